#include "WorkingCopy.h"

#include "ButtonAppearance.h"
#include "FieldDrawing.h"
#include "FieldDrawings.h"
#include "FieldReader.h"
#include "Opening.h"
#include "QSError.h"
#include "QSMutation.h"
#include "QpdfFile.h"
#include "StructureTree.h"

#include <qpdf/QPDF.hh>
#include <qpdf/QPDFFormFieldObjectHelper.hh>
#include <qpdf/QPDFObjectHandle.hh>
#include <qpdf/QPDFPageDocumentHelper.hh>

#include <algorithm>
#include <array>
#include <map>
#include <set>

using namespace Qt::Literals::StringLiterals;

namespace {
using Kind = FormField::Kind;

/// Where the working copy keeps what it took away from a dictionary.
constexpr const char *keptKey = "/QuillstoneKept";
constexpr const char *drawingKey = "/AP";
/// What a widget of the working copy has of its own, or must not have.
constexpr std::array<const char *, 8> ownKeys = {"/T",  "/Kids", "/Parent", "/FT",
                                                 "/Ff", "/V",    "/I",      "/AS"};

QPDFObjectHandle ensureDictionary(QPDFObjectHandle parent, const std::string &key)
{
    if (!parent.getKey(key).isDictionary()) {
        parent.replaceKey(key, QPDFObjectHandle::newDictionary());
    }
    return parent.getKey(key);
}

QPDFObjectHandle standardFont(const char *name, bool letters)
{
    QPDFObjectHandle font = QPDFObjectHandle::newDictionary();
    font.replaceKey("/Type", QPDFObjectHandle::newName("/Font"));
    font.replaceKey("/Subtype", QPDFObjectHandle::newName("/Type1"));
    font.replaceKey("/BaseFont", QPDFObjectHandle::newName(name));
    if (letters) {
        font.replaceKey("/Encoding", QPDFObjectHandle::newName("/WinAnsiEncoding"));
    }
    return font;
}

QPDFObjectHandle stateOf(const Widget &widget)
{
    return QPDFObjectHandle::newName(widget.value.on ? '/' + widget.onState.toStdString() : "/Off");
}

/// True for a value of the file that is shown as the rest of the form's answers are: a person can
/// change it, and the whole of it can be drawn. The file's own drawing may be older than the value,
/// or show another part of a list.
bool isDrawnHere(const Widget &widget, const QPDFObjectHandle &object)
{
    if (!widget.field.isSettable() || !widget.verbatim || !widget.drawable ||
        FieldReader::fieldOf(object).hasKey("/RV")) {
        return false;
    }
    const FieldDrawing drawing(widget);
    return drawing.hasText() && drawing.rest().isEmpty() && drawing.missing().isEmpty();
}

/// Turns a file into its working copy.
class Maker final
{
public:
    Maker(QPDF &pdf, WorkingCopy &copy, Opening &opening)
        : m_pdf(pdf), m_copy(copy), m_opening(opening)
    {
    }

    void run()
    {
        m_fields = QPDFObjectHandle::newArray();
        QPDFObjectHandle root = m_pdf.getRoot();
        root.removeKey("/Perms"); // usage rights: they forbid some programs to fill the form
        prepareForm(root);
        for (QPDFPageObjectHelper &page : QPDFPageDocumentHelper(m_pdf).getAllPages()) {
            addPage(page.getObjectHandle());
        }
        for (const Widget &widget : std::as_const(m_copy.widgets)) {
            separate(m_fields.getArrayItem(widget.field.id), widget, widget.field.id);
        }
        dropDoubles();
        m_copy.isForXFA =
            m_hadXFA && std::ranges::none_of(m_copy.widgets, [](const Widget &widget) {
                return widget.field.isSettable();
            });
        if (m_copy.tabs.contains("/S")) {
            readStructure();
        }
        m_form.replaceKey(keptKey, m_form.getKey("/Fields"));
        m_form.replaceKey("/Fields", m_fields);
    }

private:
    void prepareForm(QPDFObjectHandle root);
    void addPage(QPDFObjectHandle page);
    void tryWidget(const QPDFObjectHandle &object);
    void addWidget(const QPDFObjectHandle &object);
    void provideFont(QPDFObjectHandle object);
    void list(const QPDFObjectHandle &object);
    void adopt(QPDFObjectHandle parent, const QPDFObjectHandle &kid);
    void separate(QPDFObjectHandle object, const Widget &widget, int id);
    void switchDrawings(QPDFObjectHandle object, const Widget &widget);
    void readStructure();
    void dropDoubles();
    void dropDoubles(QPDFObjectHandle fields, const std::string &names, int depth);

    QPDF &m_pdf;
    WorkingCopy &m_copy;
    Opening &m_opening;
    QPDFObjectHandle m_form;
    QPDFObjectHandle m_fonts;
    QPDFObjectHandle m_fields;
    QPDFObjectHandle m_nothing; ///< a drawing of no ink
    std::set<QPDFObjGen> m_seen;
    std::set<QPDFObjGen> m_parents; // whose kids are in m_kids
    std::set<QPDFObjGen> m_kids;
    std::set<std::string> m_names; // of the fields on pages
    std::set<QPDFObjGen> m_walked; // of the fields above others, which may go round in circles
    std::set<QPDFObjGen> m_listed; // what the agency's list of fields has
    bool m_hadXFA = false;
    bool m_needAppearances = false;
};

void Maker::prepareForm(QPDFObjectHandle root)
{
    m_form = root.getKey("/AcroForm");
    if (!m_form.isDictionary()) {
        m_form = QPDFObjectHandle::newDictionary();
    }
    if (!m_form.isIndirect()) {
        m_form = m_pdf.makeIndirectObject(m_form);
        root.replaceKey("/AcroForm", m_form);
    }
    QPDFObjectHandle need = m_form.getKey("/NeedAppearances");
    m_needAppearances = need.isBool() && need.getBoolValue();
    m_hadXFA = m_form.hasKey("/XFA");
    // The signatures that SigFlags speaks of don't outlast a change.
    for (const char *key : {"/XFA", "/SigFlags", "/NeedAppearances"}) {
        m_form.removeKey(key);
    }
    root.removeKey("/NeedsRendering");
    m_fonts = ensureDictionary(ensureDictionary(m_form, "/DR"), "/Font");
    if (!m_fonts.hasKey("/Helv")) {
        m_fonts.replaceKey("/Helv", m_pdf.makeIndirectObject(standardFont("/Helvetica", true)));
    }
    if (!m_fonts.hasKey("/ZaDb")) {
        m_fonts.replaceKey("/ZaDb", m_pdf.makeIndirectObject(standardFont("/ZapfDingbats", false)));
    }
    if (!m_form.getKey("/Fields").isArray()) {
        m_form.replaceKey("/Fields", QPDFObjectHandle::newArray());
    }
    for (const QPDFObjectHandle &field : m_form.getKey("/Fields").getArrayAsVector()) {
        m_listed.insert(field.getObjGen());
    }
    if (!m_form.getKey("/DA").isString()) {
        m_form.replaceKey("/DA", QPDFObjectHandle::newString("/Helv 0 Tf 0 g"));
    }
}

void Maker::addPage(QPDFObjectHandle page)
{
    m_opening.beginPage();
    QPDFObjectHandle tabs = page.getKey("/Tabs");
    m_copy.tabs.append(tabs.isName() ? QByteArray::fromStdString(tabs.getName()) : QByteArray());
    QPDFObjectHandle annotations = page.getKey("/Annots");
    const int count = annotations.isArray() ? annotations.getArrayNItems() : 0;
    for (int i = 0; i < count; ++i) {
        QPDFObjectHandle object = annotations.getArrayItem(i);
        if (!object.isDictionaryOfType("", "/Widget")) {
            continue;
        }
        if (!object.isIndirect()) {
            object = m_pdf.makeIndirectObject(object);
            annotations.setArrayItem(i, object);
        }
        if (m_seen.insert(object.getObjGen()).second) {
            m_opening.countWidget();
            tryWidget(object);
        }
    }
}

void Maker::tryWidget(const QPDFObjectHandle &object)
{
    m_opening.goOn();
    try {
        addWidget(object);
    } catch (const QSError &) {
        throw;
    } catch (const std::exception &) {
        // A widget in ruins stays as it is; the others can be filled in.
    }
}

void Maker::addWidget(const QPDFObjectHandle &object)
{
    std::optional<Widget> widget = FieldReader::read(object, m_opening);
    if (!widget) {
        return;
    }
    FormField &field = widget->field;
    field.id = static_cast<int>(m_copy.widgets.size());
    field.page = static_cast<int>(m_copy.tabs.size()) - 1;
    if (widget->isToggle()) {
        ButtonAppearance::complete(m_pdf, object, '/' + widget->onState.toStdString(),
                                   field.kind == Kind::radio);
    } else if (widget->hasText()) {
        widget->stale = widget->drawable && (widget->stale || m_needAppearances);
        widget->kept = widget->kept && !widget->stale && !isDrawnHere(*widget, object);
        provideFont(object);
    }
    list(object);
    m_fields.appendItem(object);
    m_names.insert(field.name.toStdString());
    m_copy.widgets.append(*widget);
}

/// A font that the form names and doesn't have would leave its texts undrawn.
void Maker::provideFont(QPDFObjectHandle object)
{
    const std::string font =
        FieldReader::fontName(FieldReader::defaultAppearance(object)).toStdString();
    if (font.empty()) {
        object.replaceKey("/DA", QPDFObjectHandle::newString("/Helv 0 Tf 0 g"));
    } else if (!m_fonts.getKey(font).isDictionary()) {
        m_fonts.replaceKey(font, m_fonts.getKey("/Helv"));
    }
}

/// Adds a field that the form has on a page and forgot to list: other programs would not fill it
/// in, and would not print it either.
void Maker::list(const QPDFObjectHandle &object)
{
    QPDFObjectHandle top = object;
    for (int depth = 0; depth < Opening::deepest; ++depth) {
        if (m_listed.count(top.getObjGen()) > 0) {
            return;
        }
        QPDFObjectHandle parent = top.getKey("/Parent");
        const bool isField = entryOf(parent, "/Kids").isArray() ||
                             (parent.isDictionary() && m_listed.count(parent.getObjGen()) > 0);
        if (!parent.isIndirect() || !isField) {
            break;
        }
        adopt(parent, top);
        top = parent;
    }
    m_form.getKey("/Fields").appendItem(top);
    m_listed.insert(top.getObjGen());
}

/// Lists a field with the one that it names as its parent.
void Maker::adopt(QPDFObjectHandle parent, const QPDFObjectHandle &kid)
{
    if (!parent.getKey("/Kids").isArray()) {
        parent.replaceKey("/Kids", QPDFObjectHandle::newArray());
    }
    QPDFObjectHandle kids = parent.getKey("/Kids");
    if (m_parents.insert(parent.getObjGen()).second) {
        for (const QPDFObjectHandle &each : kids.getArrayAsVector()) {
            m_kids.insert(each.getObjGen());
        }
    }
    if (m_kids.insert(kid.getObjGen()).second) {
        kids.appendItem(kid);
    }
}

/// Takes away listed fields that are on no page and have the name of one that is: a program that
/// goes by names would read their values, which nobody sees.
void Maker::dropDoubles()
{
    dropDoubles(m_form.getKey("/Fields"), {}, 0);
}

void Maker::dropDoubles(QPDFObjectHandle fields, const std::string &names, int depth)
{
    if (depth >= Opening::deepest) {
        return;
    }
    std::vector<QPDFObjectHandle> kept;
    for (QPDFObjectHandle field : fields.getArrayAsVector()) {
        m_opening.goOn();
        QPDFObjectHandle own = entryOf(field, "/T");
        const std::string name =
            own.isString() ? (names.empty() ? names : names + '.') + own.getUTF8Value() : names;
        QPDFObjectHandle kids = entryOf(field, "/Kids");
        if (kids.isArray() && kids.getArrayNItems() > 0) {
            if (m_walked.insert(field.getObjGen()).second) {
                dropDoubles(kids, name, depth + 1);
            }
        } else if (own.isString() && m_seen.count(field.getObjGen()) == 0 &&
                   m_names.count(name) > 0) {
            continue;
        }
        kept.push_back(field);
    }
    fields.setArrayFromVector(kept);
}

/// Makes a widget a button of its own.
void Maker::separate(QPDFObjectHandle object, const Widget &widget, int id)
{
    QPDFObjectHandle kept = QPDFObjectHandle::newDictionary();
    QPDFFormFieldObjectHelper field(object);
    const std::string type = field.getFieldType();
    const int flags = field.getFlags();
    const bool isSwitched = widget.hasText() || widget.isToggle();
    for (const char *key : ownKeys) {
        if (object.hasKey(key)) {
            kept.replaceKey(key, object.getKey(key));
        }
    }
    object.replaceKey(keptKey, kept);
    object.replaceKey("/T", QPDFObjectHandle::newString(WorkingCopy::nameOf(id).toStdString()));
    object.removeKey("/Kids");
    if (widget.hasText()) {
        kept.replaceKey(drawingKey, object.getKey(drawingKey));
        switchDrawings(object, widget);
    }
    object.removeKey("/Parent"); // Poppler would read it, with all its kids, for each of them
    object.replaceKey("/FT", QPDFObjectHandle::newName(isSwitched ? "/Btn" : type));
    object.replaceKey("/Ff",
                      QPDFObjectHandle::newInteger(isSwitched ? flags & ff_all_read_only : flags));
    if (widget.isToggle()) {
        object.replaceKey("/V", stateOf(widget));
        object.replaceKey("/AS", stateOf(widget));
    }
}

/// On is what the file has, off is nothing.
void Maker::switchDrawings(QPDFObjectHandle object, const Widget &widget)
{
    if (!m_nothing.isInitialized()) {
        m_nothing = FieldDrawings::nothing(m_pdf);
    }
    QPDFObjectHandle states = QPDFObjectHandle::newDictionary();
    states.replaceKey("/On", widget.kept ? entryOf(object.getKey(drawingKey), "/N") : m_nothing);
    states.replaceKey("/Off", m_nothing);
    QPDFObjectHandle drawing = QPDFObjectHandle::newDictionary();
    drawing.replaceKey("/N", states);
    object.replaceKey(drawingKey, drawing);
    const QPDFObjectHandle state = QPDFObjectHandle::newName(widget.kept ? "/On" : "/Off");
    object.replaceKey("/V", state);
    object.replaceKey("/AS", state);
}

void Maker::readStructure()
{
    std::map<QPDFObjGen, int> ids;
    for (const Widget &widget : std::as_const(m_copy.widgets)) {
        ids.emplace(m_fields.getArrayItem(widget.field.id).getObjGen(), widget.field.id);
    }
    for (const QPDFObjectHandle &annotation : StructureTree::annotations(m_pdf)) {
        if (const auto found = ids.find(annotation.getObjGen()); found != ids.end()) {
            m_copy.structure.append(found->second);
        }
    }
}

QPDFObjectHandle stored(const QString &text)
{
    QString lines = text;
    return QPDFObjectHandle::newUnicodeString(lines.replace(u'\n', u'\r').toStdString());
}

void writeChoice(QPDFObjectHandle field, const Widget &widget)
{
    QPDFObjectHandle values = QPDFObjectHandle::newArray();
    QPDFObjectHandle positions = QPDFObjectHandle::newArray();
    for (const int chosen : widget.value.chosen) {
        values.appendItem(stored(widget.field.choices.at(chosen).exportValue));
        positions.appendItem(QPDFObjectHandle::newInteger(chosen));
    }
    if (!widget.value.text.isEmpty()) {
        values.appendItem(stored(widget.value.text));
    }
    field.replaceKey("/V", values.getArrayNItems() == 1 ? values.getArrayItem(0) : values);
    // None says that a text is one of its own, and not what one of the choices stores.
    field.replaceKey("/I", positions);
}

void giveBack(QPDFObjectHandle object, const Widget &widget)
{
    const QPDFObjectHandle kept = object.getKey(keptKey);
    for (const char *key : ownKeys) {
        object.replaceKey(key, entryOf(kept, key));
    }
    if (widget.hasText()) {
        object.replaceKey(drawingKey, entryOf(kept, drawingKey));
    }
    object.removeKey(keptKey);
}

void writeDrawing(QPDF &pdf, QPDFObjectHandle object, const Widget &widget,
                  const FieldDrawings &drawings)
{
    if (!widget.hasText() || widget.kept) {
        return;
    }
    QPDFObjectHandle drawing = drawings.appearance(pdf, widget);
    if (drawing.isNull() && !object.hasKey(drawingKey)) {
        return;
    }
    QPDFObjectHandle states = QPDFObjectHandle::newDictionary();
    states.replaceKey("/N", drawing.isNull() ? FieldDrawings::nothing(pdf) : drawing);
    object.replaceKey(drawingKey, states);
}

/// What the widget shows, which is its own and not its field's.
void writeState(QPDFObjectHandle object, const Widget &widget)
{
    if (widget.isToggle()) {
        object.replaceKey("/AS", stateOf(widget));
    } else if (entryOf(object.getKey("/AP"), "/N").isStream()) {
        // A single drawing has no states; told of one, other programs find no drawing.
        object.removeKey("/AS");
    }
}

void writeValue(QPDFObjectHandle object, const Widget &widget)
{
    QPDFObjectHandle field = FieldReader::fieldOf(object);
    if (!field.isSameObjectAs(object)) {
        object.removeKey("/V");
        object.removeKey("/I");
    }
    field.removeKey("/RV"); // the same text with its styles, as it was before
    if (widget.isToggle()) {
        field.replaceKey("/V", stateOf(widget));
        Opening opening;
        if (FieldReader::buttonValues(field.getKey("/Opt"), opening).isEmpty()) {
            field.removeKey("/Opt"); // else other programs read the same value whichever is on
        }
    } else if (widget.field.kind == Kind::text) {
        field.replaceKey("/V", stored(widget.value.text));
    } else {
        writeChoice(field, widget);
    }
}
} // namespace

WorkingCopy WorkingCopy::make(const QByteArray &bytes, Opening &opening)
{
    const QpdfFile file(bytes, opening.stop());
    WorkingCopy copy;
    copy.isPacked = file.isPacked();
    Maker(file.pdf(), copy, opening).run();
    opening.goOn();
    copy.bytes = file.writeLoose();
    return copy;
}

QString WorkingCopy::nameOf(int id)
{
    return u"widget"_s + QString::number(id);
}

void WorkingCopy::finish(QPDF &pdf, const QList<Widget> &widgets, const FieldDrawings &drawings)
{
    QPDFObjectHandle form = pdf.getRoot().getKey("/AcroForm");
    const std::vector<QPDFObjectHandle> objects = form.getKey("/Fields").getArrayAsVector();
    if (objects.size() != static_cast<size_t>(widgets.size())) {
        throw QSError::invalid(u"The form's fields could not be written."_s);
    }
    for (qsizetype i = 0; i < widgets.size(); ++i) {
        QPDFObjectHandle object = objects.at(static_cast<size_t>(i));
        giveBack(object, widgets.at(i));
        writeDrawing(pdf, object, widgets.at(i), drawings);
        writeState(object, widgets.at(i));
    }
    // Of buttons that share a field, the one that is on has the last word.
    for (const bool on : {false, true}) {
        for (qsizetype i = 0; i < widgets.size(); ++i) {
            const Widget &widget = widgets.at(i);
            if (widget.changed && widget.value.on == on &&
                !QSMutation::on(u"saved-form-forgets-values")) {
                writeValue(objects.at(static_cast<size_t>(i)), widget);
            }
        }
    }
    form.replaceKey("/Fields", form.getKey(keptKey));
    form.removeKey(keptKey);
    form.removeKey("/NeedAppearances");
}
