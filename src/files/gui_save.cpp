// The state that a save of the GUI writes, taken on the thread of the forms.
#include "gui_save.h"

#include "comment_builder.h"
#include "engine/form_model.h"
#include "engine/register_images.h"
#include "save_filter.h"
#include "worker/panel_settings.h"

GuiSave GuiSave::take(const FormModel& model, const PanelSettings& settings)
{
    const RegisterImages& map = model.images();
    GuiSave save;
    save.chipName = map.chipName;
    save.guiImage = QByteArray(reinterpret_cast<const char*>(map.guiImage), int(map.registerCount));
    save.icImage = QByteArray(reinterpret_cast<const char*>(map.icImage), int(map.registerCount));
    save.changesOnly = settings.changesOnly;
    save.withComments = settings.comments;
    save.allRegisters = settings.allRegisters;
    if (save.withComments)
        save.comments = CommentBuilder::build(model, save.changesOnly);
    save.leftOut = SaveFilter::leftOut(model.catalogue(), settings.statusBits, settings.serviceBits);
    return save;
}
