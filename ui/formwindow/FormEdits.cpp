#include "FormEdits.h"

#include "AppModel.h"

#include <QUndoCommand>

#include <algorithm>
#include <chrono>

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

namespace {
/// After so long a pause a new step begins.
constexpr std::chrono::milliseconds restTime = 2s;
} // namespace

/// One change of a field, or of several at once, with whatever followed it.
class FormEdits::Change final : public QUndoCommand
{
public:
    Change(FormEdits &edits, int field, int step, const Values &before, const Values &after)
        : m_edits(edits), m_field(field), m_step(step), m_before(before), m_after(after)
    {
        setText(u"change of an answer"_s);
    }

    void undo() override { m_edits.restore(m_field, m_before); }

    void redo() override
    {
        if (m_done) { // the first time it was done by whoever made the change
            m_edits.restore(m_field, m_after);
        }
        m_done = true;
    }

    [[nodiscard]] int id() const override { return 1; }

    bool mergeWith(const QUndoCommand *next) override
    {
        const auto *later = static_cast<const Change *>(next);
        if (later->m_field != m_field || later->m_step != m_step) {
            return false;
        }
        m_after = later->m_after;
        return true;
    }

private:
    FormEdits &m_edits;
    int m_field;
    int m_step;
    Values m_before;
    Values m_after;
    bool m_done = false;
};

FormEdits::FormEdits(AppModel &model, QObject *parent) : QObject(parent), m_model(model) {}

void FormEdits::editTogether(const Values &values)
{
    // an input method hands over its last letters when focus leaves
    if (!m_model.openPDF() || values.isEmpty()) {
        return;
    }
    const int field = values.first().first;
    const bool alone = values.size() == 1;
    const bool paused = !m_sinceEdit.isValid() || m_sinceEdit.hasExpired(restTime.count());
    const bool typed =
        m_model.openPDF()->document().fields().at(field).kind == FormField::Kind::text;
    if (paused || !typed || !alone) {
        endStep();
    }
    m_sinceEdit.start();
    const Values before = groups(values);
    for (const auto &[id, value] : values) {
        m_model.setFormValue(id, value);
    }
    const Values after = groups(values);
    if (before != after) {
        m_stack.push(std::make_unique<Change>(*this, field, m_step, before, after).release());
    }
    if (!alone) {
        endStep();
    }
}

FormEdits::Values FormEdits::groups(const Values &values) const
{
    const QSPDFDocument &document = m_model.openPDF()->document();
    const auto belongs = [&](const FormField &each) {
        return std::ranges::any_of(values, [&](const auto &value) {
            const QString &name = document.fields().at(value.first).name;
            return each.id == value.first || (!name.isEmpty() && each.name == name);
        });
    };
    Values found;
    for (const FormField &each : document.fields()) {
        if (belongs(each)) {
            found.append({each.id, document.value(each.id)});
        }
    }
    return found;
}

void FormEdits::restore(int field, const Values &values)
{
    if (!m_model.openPDF()) {
        return;
    }
    endStep();
    for (const auto &[id, value] : values) {
        // setting one of a group can bring the others along
        if (m_model.openPDF()->document().value(id) != value) {
            m_model.setFormValue(id, value);
        }
    }
    Q_EMIT turnedTo(field);
}
