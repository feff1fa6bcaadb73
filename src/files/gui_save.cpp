// The state that a save of the GUI writes, taken on the GUI thread.
#include "gui_save.h"

#include "comment_builder.h"
#include "engine/form_model.h"
#include "engine/register_images.h"
#include "save_filter.h"

GuiSave GuiSave::take(const FormModel& model, const QMap<QString, int>& settings)
{
    const RegisterImages& map = model.images();
    GuiSave save;
    save.chipName = map.chipName;
    save.guiImage = QByteArray(reinterpret_cast<const char*>(map.guiImage), int(map.registerCount));
    save.icImage = QByteArray(reinterpret_cast<const char*>(map.icImage), int(map.registerCount));
    save.changesOnly = settings.value(QStringLiteral("ChangesOnly"), 0) != 0;
    save.withComments = settings.value(QStringLiteral("HexComment"), 0) != 0;
    if (save.withComments)
        save.comments = CommentBuilder::build(model, save.changesOnly);
    save.leftOut = SaveFilter::leftOut(model.catalogue(), settings.value(QStringLiteral("StatusBits"), 1) != 0,
                                       settings.value(QStringLiteral("ServiceBits"), 1) != 0);
    return save;
}
