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
    <message>
        <source>Чтение ИС</source>
        <translation>Reading</translation>
    </message>
    <message>
        <source>Запись ИС</source>
        <translation>Writing</translation>
    </message>
    <message>
        <source>Файл в ИС</source>
        <translation>File→IC</translation>
    </message>
    <message>
        <source>ИС в файл</source>
        <translation>IC→file</translation>
    </message>
    <message>
        <source>Загрузка</source>
        <translation>Loading</translation>
    </message>
    <message>
        <source>Сохранение</source>
        <translation>Saving</translation>
    </message>
    <message>
        <source>Регистр</source>
        <translation>Register</translation>
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
    <message>
        <source>Ошибка обмена по USB: </source>
        <translation>USB transfer error: </translation>
    </message>
</context>
<context>
    <name>service_block</name>
    <message>
        <source>Поиск</source>
        <translation>Search</translation>
    </message>
    <message>
        <source>Режим чтения</source>
        <translation>Reading</translation>
    </message>
    <message>
        <source>Режим записи</source>
        <translation>Writting</translation>
    </message>
    <message>
        <source>По одному регистру</source>
        <translation>Separate registers</translation>
    </message>
    <message>
        <source>Блоками</source>
        <translation>Block</translation>
    </message>
    <message>
        <source>С автоинкрементом</source>
        <translation>Autoincrement</translation>
    </message>
    <message>
        <source>Зациклить чтение (сек)</source>
        <translation>Loop read (sec)</translation>
    </message>
    <message>
        <source>Только изменения</source>
        <translation>Changes only</translation>
    </message>
    <message>
        <source>Вычитка после записи</source>
        <translation>Interactive refresh</translation>
    </message>
    <message>
        <source>Задержка записи/чтения (мс)</source>
        <translation>Read/write pause (msec)</translation>
    </message>
    <message>
        <source>Комментировать файл</source>
        <translation>Add comments</translation>
    </message>
    <message>
        <source>Дописывать файл</source>
        <translation>Merge file</translation>
    </message>
    <message>
        <source>Проверять версию конфига</source>
        <translation>Check config version</translation>
    </message>
    <message>
        <source>Сохранять статусные регистры</source>
        <translation>Save status</translation>
    </message>
    <message>
        <source>Сохранять сервисные регистры</source>
        <translation>Save service</translation>
    </message>
    <message>
        <source>Регистр №</source>
        <translation>Register#</translation>
    </message>
    <message>
        <source>Чтение</source>
        <translation>Read</translation>
    </message>
    <message>
        <source>Запись</source>
        <translation>Write</translation>
    </message>
</context>
</TS>
