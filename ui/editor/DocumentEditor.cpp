#include "DocumentEditor.h"

#include "AppModel.h"
#include "FieldsPane.h"
#include "PaperPreview.h"
#include "QSTemplates.h"
#include "VxButton.h"
#include "VxFlow.h"
#include "VxSplit.h"
#include "VxText.h"
#include "screens/ExportMenu.h"

#include <QGuiApplication>
#include <QHBoxLayout>
#include <QInputMethod>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSplitter>
#include <QVBoxLayout>

using namespace Qt::Literals::StringLiterals;

namespace {
/// The answers of a document whose template is missing, each under its key: nothing typed is gone.
QSTemplate bareFields(const QSDocument &document)
{
    QSTemplate bare;
    for (const QString &key : document.values.keys()) {
        bare.fields.append({key, key, QSFieldKind::multiline, std::nullopt, false});
    }
    return bare;
}
} // namespace

DocumentEditor::DocumentEditor(AppModel &model, QWidget *parent)
    : QWidget(parent),
      m_model(model),
      m_name(new QLineEdit(this)),
      m_state(VxText::make({}, VxText::Role::note, this)),
      m_stillEmpty(VxText::make({}, VxText::Role::note, this)),
      m_unprintable(VxText::make({}, VxText::Role::body, this)),
      m_fields(new FieldsPane(this)),
      m_preview(new PaperPreview(this))
{
    m_fields->setMinimumWidth(fontMetrics().height() * 12);

    auto *column = new QVBoxLayout(this);
    column->setContentsMargins({});
    column->addWidget(createCommands());
    column->addWidget(VxSplit::make(m_fields, m_preview, u"qs.editor.splitter"_s, this), 1);
    connectModel();
    openDocument();
}

QWidget *DocumentEditor::createCommands()
{
    auto *bar = new QWidget(this);
    auto *names = new QHBoxLayout;
    auto *label = new QLabel(u"Document name"_s, bar);
    label->setBuddy(m_name);
    m_name->setAccessibleName(label->text());
    names->addWidget(label);
    names->addWidget(m_name, 1);
    names->addWidget(m_state);
    m_state->setWordWrap(false);

    auto *buttons = new VxFlow;
    buttons->setSpacing(fontMetrics().height() / 2);
    auto *column = new QVBoxLayout(bar);
    column->setContentsMargins({});
    column->addLayout(buttons);
    column->addLayout(names);
    column->addWidget(m_stillEmpty);
    column->addWidget(m_unprintable);
    const auto add = [buttons](const QString &text, const QString &symbol) {
        return VxButton::add(buttons, text, symbol);
    };
    QPushButton *fill = add(u"Fill from profile"_s, u"person.crop.circle.fill"_s);
    QPushButton *save = add(u"Save"_s, u"tray.and.arrow.down.fill"_s);
    QPushButton *formats = add(u"Export"_s, u"square.and.arrow.up"_s);
    QPushButton *print = add(u"Print\u2026"_s, u"printer.fill"_s);
    QPushButton *close = add(u"Close"_s, u"xmark"_s);
    setTabOrder(close, m_name); // the fields follow the name

    connect(fill, &QPushButton::clicked, &m_model, &AppModel::fillFromProfile);
    connect(save, &QPushButton::clicked, &m_model, &AppModel::saveEdited);
    connect(close, &QPushButton::clicked, &m_model, &AppModel::closeEditor);
    connect(print, &QPushButton::clicked, &m_model, &AppModel::printEdited);
    ExportMenu::attach(formats, this,
                       [this](QSExport::Format format) { m_model.exportEdited(format); });
    return bar;
}

void DocumentEditor::connectModel()
{
    connect(&m_model, &AppModel::editingChanged, this, &DocumentEditor::openDocument);
    connect(&m_model, &AppModel::editedDocumentChanged, this, &DocumentEditor::reload);
    connect(&m_model, &AppModel::editsWanted, this,
            [] { QGuiApplication::inputMethod()->commit(); });
    connect(m_fields, &FieldsPane::edited, this, &DocumentEditor::valueEdited);
    connect(m_name, &QLineEdit::textEdited, this, [this](const QString &title) {
        if (m_model.editing()) {
            m_model.setEditedTitle(title);
            showState();
        }
    });
}

void DocumentEditor::openDocument()
{
    if (!m_model.editing()) {
        window()->setWindowModified(false);
        return;
    }
    const QSDocument &document = m_model.editing()->document();
    const QSTemplate *source = QSTemplates::templateById(document.templateID);
    m_fields->setTemplate(source ? *source : bareFields(document));
    m_fields->chainTabOrder(m_name, m_preview);
    showAnswers();
    m_preview->open(AppModel::render(document).value_or(QSRendered()));
    showState();
}

void DocumentEditor::showAnswers()
{
    const QSDocument &document = m_model.editing()->document();
    if (m_name->text() != document.title) {
        m_name->setText(document.title);
    }
    m_fields->setValues(document.values);
}

void DocumentEditor::reload()
{
    showAnswers();
    m_preview->follow(AppModel::render(m_model.editing()->document()).value_or(QSRendered()));
    showState();
}

void DocumentEditor::valueEdited(const QString &key, const QString &value)
{
    if (!m_model.editing()) { // an input method hands over its last letters when focus leaves
        return;
    }
    m_model.setEditedValue(key, value);
    m_preview->follow(AppModel::render(m_model.editing()->document()).value_or(QSRendered()));
    showState();
}

void DocumentEditor::showState()
{
    const DocumentSession &session = *m_model.editing();
    window()->setWindowModified(session.hasUnsavedChanges());
    if (session.hasUnsavedChanges()) {
        m_state->setText(u"Not saved yet"_s);
    } else {
        m_state->setText(session.document().id ? u"Saved"_s : QString());
    }
    const QStringList empty = m_fields->emptyFields();
    const QString missing = m_preview->missingCharacters();
    m_unprintable->setVisible(!missing.isEmpty());
    m_unprintable->setText(
        u"No font on this computer can print these characters: %1"_s.arg(missing));
    m_stillEmpty->setVisible(!empty.isEmpty());
    m_stillEmpty->setText(u"Still empty (printed as blank lines): "_s + empty.join(u", "_s));
}

void DocumentEditor::focusFirstField()
{
    if (m_model.editing()) {
        m_fields->focusFirst(m_model.editing()->document().values);
    }
}
