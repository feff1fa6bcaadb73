// The undo and redo steps of the forms, kept as images.
#include "form_history.h"

#include "form_model.h"
#include "register_images.h"

FormHistory::FormHistory(FormModel& model, int limit) : forms(model), limit(limit) {}

FormHistory::State FormHistory::state() const
{
    const RegisterImages& images = forms.images();
    return {QByteArray(reinterpret_cast<const char*>(images.guiImage), int(images.registerCount)), chipOnly};
}

void FormHistory::edit(int field, int signalValue)
{
    const State before = state();
    forms.widgetChanged(field, signalValue);
    const bool joins = field == openField && !undoSteps.isEmpty() && undoSteps.last().field == field;
    openField = forms.entry(field).kind == FieldKind::Spin ? field : -1;
    if (joins) {
        undoSteps.last().after = state();
        return;
    }
    QString what = forms.entry(field).record.name;
    const QString chipWord = QLatin1Char('_') + forms.catalogue().chipName();
    if (what.endsWith(chipWord))
        what.chop(chipWord.size());
    record({what, before, state(), field});
}

void FormHistory::closeEdit()
{
    openField = -1;
}

void FormHistory::shown(Kind kind, const QString& what, const State& before)
{
    openField = -1;
    if (kind != Kind::Edit)
        chipOnly = kind == Kind::Load;
    record({what, before, state(), -1});
}

void FormHistory::record(Step step)
{
    if (step.before.image == step.after.image && step.before.chipOnly == step.after.chipOnly)
        return;
    redoSteps.clear();
    undoSteps.append(std::move(step));
    if (undoSteps.size() > limit)
        undoSteps.removeFirst();
    tell();
}

QString FormHistory::undoText() const
{
    return undoSteps.isEmpty() ? QString() : undoSteps.last().what;
}

QString FormHistory::redoText() const
{
    return redoSteps.isEmpty() ? QString() : redoSteps.last().what;
}

bool FormHistory::undo()
{
    if (undoSteps.isEmpty())
        return false;
    redoSteps.append(undoSteps.takeLast());
    show(redoSteps.last().before);
    tell();
    return true;
}

bool FormHistory::redo()
{
    if (redoSteps.isEmpty())
        return false;
    undoSteps.append(redoSteps.takeLast());
    show(undoSteps.last().after);
    tell();
    return true;
}

void FormHistory::clear()
{
    undoSteps.clear();
    redoSteps.clear();
    openField = -1;
    tell();
}

// The fields are shown from the image as a load shows them, so each field
// that changes runs its rules; the bulbs show the image too, so the chip-only
// fields show "n/a" again if they did in that state.
void FormHistory::show(const State& shown)
{
    openField = -1;
    // The image first, whole: registers no editing field covers (the chip's
    // identity, say) come back only this way.
    RegisterImages& images = forms.images();
    std::copy_n(reinterpret_cast<const quint8*>(shown.image.constData()),
                qMin(quint32(shown.image.size()), images.registerCount), images.guiImage);
    forms.push(reinterpret_cast<const quint8*>(shown.image.constData()));
    if (shown.chipOnly)
        forms.markChipOnly();
    chipOnly = shown.chipOnly;
}

void FormHistory::tell() const
{
    if (changed)
        changed();
}
