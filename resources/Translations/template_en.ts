<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="en_US" sourcelanguage="ru_RU">
<context>
    <name>MainClass</name>
    <message>
        <source>ZV4280v2</source>
        <translation>ZV4280v2</translation>
    </message>
    <message>
        <source>Сброс ПО</source>
        <translation>Default</translation>
    </message>
    <message>
        <source>Загрузить дефолт (F5)</source>
        <translation>Load default.hex (F5)</translation>
    </message>
    <message>
        <source>ПО -&gt; Файл</source>
        <translation>GUI -&gt; File</translation>
    </message>
    <message>
        <source>ПО -&gt; Файл (F6)</source>
        <translation>Save GUI to File (F6)</translation>
    </message>
    <message>
        <source>Файл -&gt; ПО</source>
        <translation>File -&gt;GUI</translation>
    </message>
    <message>
        <source>Файл -&gt; ПО (F7)</source>
        <translation>Load file into GUI</translation>
    </message>
    <message>
        <source>Файл -&gt; ИС</source>
        <translation>Write file directly to IC</translation>
    </message>
    <message>
        <source>Файл -&gt; ИС (F9)</source>
        <translation>Write file directly to IC</translation>
    </message>
    <message>
        <source>ПО -&gt; ИС</source>
        <translation>GUI -&gt; IC</translation>
    </message>
    <message>
        <source>ПО -&gt; ИС (F10)</source>
        <translation>Write GUI state to IC (F10)</translation>
    </message>
    <message>
        <source>ИС -&gt; ПО</source>
        <translation>IC -&gt; GUI</translation>
    </message>
    <message>
        <source>ИС -&gt; ПО (F11)</source>
        <translation>Read IC state to GUI (F11)</translation>
    </message>
    <message>
        <source>Настройки ПО</source>
        <translation>Service settings</translation>
    </message>
    <message>
        <source>Regmap</source>
        <translation>Regmap</translation>
    </message>
    <message>
        <source>Save .hex</source>
        <translation>Save .hex</translation>
    </message>
    <message>
        <source>Open .hex</source>
        <translation>Open .hex</translation>
    </message>
    <message>
        <source>Open file</source>
        <translation>Open file</translation>
    </message>
    <message>
        <source>Map files (*.hex)</source>
        <translation>Map files (*.hex)</translation>
    </message>
</context>
<context>
    <name>mapshow</name>
    <message>
        <source>Карта регистров</source>
        <translation>Regmap</translation>
    </message>
    <message>
        <source>Колонки</source>
        <translation>Column</translation>
    </message>
    <message>
        <source>Шрифт</source>
        <translation>Size</translation>
    </message>
</context>
<context>
    <name>clerk</name>
    <message>
        <source>Отсутствует карта регистров</source>
        <translation>Regmap not defined</translation>
    </message>
    <message>
        <source>Неожиданная команда</source>
        <translation>Unexpected error</translation>
    </message>
    <message>
        <source>Недокументированная 
комбинация флагов</source>
        <translation>Unexpected command</translation>
    </message>
    <message>
        <source>.hex file is not available</source>
        <translation>".hex" file is not available</translation>
    </message>
</context>
</TS>
