#include "FieldReader.h"

#include "FieldLook.h"
#include "Opening.h"
#include "QpdfFile.h"

#include <QRegularExpression>
#include <QSet>

#include <qpdf/QPDFFormFieldObjectHelper.hh>
#include <qpdf/QPDFObjectHandle.hh>

#include <algorithm>
#include <array>
#include <set>

using namespace Qt::Literals::StringLiterals;

namespace {
using Kind = FormField::Kind;
using Objects = std::vector<QPDFObjectHandle>;

constexpr int radiosInUnison = 1 << 25; // bit 26; qpdf's constant for it is another bit

QString toQString(const std::string &utf8)
{
    return QString::fromStdString(utf8);
}

/// Line ends of all systems as "\n".
QString withPlainLineEnds(QString text)
{
    return text.replace(u"\r\n"_s, u"\n"_s).replace(u'\r', u'\n');
}

/// A text that stands in a PDF as a string or, when long, as a stream.
QString textOf(QPDFObjectHandle object, Opening &opening)
{
    constexpr size_t mostBytes = 4 * Opening::mostLetters + 4; // with a mark of the encoding
    std::string bytes;
    if (object.isString()) {
        bytes = object.getStringValue();
    } else if (object.isStream()) {
        bytes = dataOf(object, mostBytes).value_or(std::string(mostBytes + 1, ' '));
    }
    if (bytes.size() > mostBytes) {
        opening.countLetters(static_cast<qsizetype>(bytes.size()));
    }
    const QString text = toQString(QPDFObjectHandle::newString(bytes).getUTF8Value());
    opening.countLetters(text.size() > Opening::mostLetters ? text.toUcs4().size() : text.size());
    return text;
}

/// What stands above a field is asked for again and again.
void checkParents(const QPDFObjectHandle &widget, Opening &opening)
{
    qsizetype letters = 0;
    std::set<QPDFObjGen> seen; // a damaged field may lie in itself
    for (QPDFObjectHandle above = widget;
         above.isDictionary() && seen.insert(above.getObjGen()).second;
         above = above.getKey("/Parent")) {
        opening.checkDepth(static_cast<int>(seen.size()));
        QPDFObjectHandle name = above.getKey("/T");
        letters += name.isString() ? static_cast<qsizetype>(name.getStringValue().size()) : 0;
    }
    opening.countLetters(letters);
}

int flagsOf(QPDFObjectHandle widget)
{
    QPDFObjectHandle flags = widget.getKey("/F");
    return flags.isInteger() ? flags.getIntValueAsInt() : 0;
}

std::optional<Kind> kindOf(QPDFFormFieldObjectHelper &field)
{
    const std::string type = field.getFieldType();
    const int flags = field.getFlags();
    if (type == "/Tx") {
        return Kind::text;
    }
    if (type == "/Ch") {
        return (flags & ff_ch_combo) != 0 ? Kind::comboBox : Kind::listBox;
    }
    if (type == "/Sig") {
        return Kind::signature;
    }
    if (type != "/Btn") {
        return std::nullopt;
    }
    if ((flags & ff_btn_pushbutton) != 0) {
        return Kind::pushButton;
    }
    return (flags & ff_btn_radio) != 0 ? Kind::radio : Kind::checkBox;
}

/// "form1[0].Page1[0].family_name[0]" as "Family name".
QString readable(const QString &name)
{
    static const QRegularExpression index(u"\\[\\d+\\]"_s);
    static const QRegularExpression hump(u"(?<=[\\p{Ll}\\d])(?=\\p{Lu}\\p{Ll})"_s);
    QString label = name.section(u'.', -1);
    label.remove(index).replace(hump, u" "_s).replace(u'_', u' ');
    label = label.simplified();
    return label.isEmpty() ? label : label.first(1).toUpper() + label.sliced(1);
}

QByteArray fontToken(const QByteArray &appearance, int before)
{
    const QList<QByteArray> tokens = appearance.simplified().split(' ');
    const qsizetype at = tokens.indexOf("Tf");
    return at >= before ? tokens.at(at - before) : QByteArray();
}

QList<FormField::Choice> choicesOf(QPDFObjectHandle options, Opening &opening)
{
    QList<FormField::Choice> choices;
    if (!options.isArray()) {
        return choices;
    }
    for (QPDFObjectHandle option : options.getArrayAsVector()) {
        if (option.isArray() && option.getArrayNItems() > 1) {
            choices.append({.label = textOf(option.getArrayItem(1), opening),
                            .exportValue = textOf(option.getArrayItem(0), opening)});
        } else {
            const QString text = textOf(option, opening);
            choices.append({.label = text, .exportValue = text});
        }
    }
    return choices;
}

int positionOf(const QList<FormField::Choice> &choices, const QString &text)
{
    const auto find = [&](auto member) {
        const auto found = std::ranges::find(choices, text, member);
        return found == choices.end() ? -1 : static_cast<int>(found - choices.begin());
    };
    const int position = find(&FormField::Choice::exportValue);
    return position >= 0 ? position : find(&FormField::Choice::label);
}

/// The texts or numbers of an array; a single one stands for itself.
Objects itemsOf(QPDFObjectHandle object)
{
    return object.isArray() ? object.getArrayAsVector() : Objects{object};
}

QList<int> inOrder(QList<int> positions)
{
    std::ranges::sort(positions);
    positions.erase(std::unique(positions.begin(), positions.end()), positions.end());
    return positions;
}

QList<int> storedPositions(const FormField &field, const QPDFObjectHandle &stored)
{
    QList<int> positions;
    for (QPDFObjectHandle item : itemsOf(stored)) {
        if (item.isInteger() && item.getIntValue() >= 0 &&
            item.getIntValue() < field.choices.size()) {
            positions.append(item.getIntValueAsInt());
        }
    }
    return inOrder(positions);
}

/// True when the positions are those of the texts, which may belong to several choices alike.
bool agree(const FormField &field, const QList<int> &positions, QStringList texts)
{
    QStringList exported;
    for (const int position : positions) {
        exported.append(field.choices.at(position).exportValue);
    }
    exported.sort();
    texts.sort();
    return exported == texts;
}

/// Chooses what the texts say; false when one is neither a choice nor a text of one's own.
bool readTexts(const FormField &field, const QStringList &texts, bool own, FormValue &value)
{
    bool known = true;
    value.chosen.clear();
    for (const QString &text : texts) {
        const int position = own ? -1 : positionOf(field.choices, text);
        if (position >= 0) {
            value.chosen.append(position);
        } else if (field.editable) {
            value.text = text;
        } else {
            known = known && text.isEmpty();
        }
    }
    value.chosen = inOrder(value.chosen);
    return known;
}

void readChosen(Widget &widget, QPDFFormFieldObjectHelper &helper, Opening &opening)
{
    const FormField &field = widget.field;
    FormValue &value = widget.value;
    QPDFObjectHandle positions = helper.getInheritableFieldValue("/I");
    QPDFObjectHandle stored = helper.getInheritableFieldValue("/V");
    QStringList texts;
    for (const QPDFObjectHandle &item : stored.isNull() ? Objects() : itemsOf(stored)) {
        texts.append(textOf(item, opening));
    }
    value.chosen = storedPositions(field, positions);
    if (!stored.isNull() && !agree(field, value.chosen, texts)) {
        // Told that no choice is chosen, the text is one of its own, whatever the choices store.
        const bool own = field.editable && positions.isArray() && positions.getArrayNItems() == 0;
        widget.drawable = readTexts(field, texts, own, value);
    }
    if (!field.multiSelect && value.chosen.size() > 1) {
        value.chosen.resize(1);
        widget.drawable = false;
    }
}

void readText(Widget &widget, QPDFFormFieldObjectHelper &helper, Opening &opening)
{
    FormField &field = widget.field;
    const int flags = helper.getFlags();
    field.multiLine = (flags & ff_tx_multiline) != 0;
    field.password = (flags & ff_tx_password) != 0;
    QPDFObjectHandle length = helper.getInheritableFieldValue("/MaxLen");
    field.maxLength = length.isInteger() ? std::max(0, length.getIntValueAsInt()) : 0;
    field.comb = (flags & ff_tx_comb) != 0 && field.maxLength > 0 && !field.multiLine &&
                 !field.password && (flags & ff_tx_file_select) == 0;
    widget.value.text = withPlainLineEnds(textOf(helper.getInheritableFieldValue("/V"), opening));
}

void readChoice(Widget &widget, QPDFFormFieldObjectHelper &helper, Opening &opening)
{
    FormField &field = widget.field;
    const int flags = helper.getFlags();
    field.choices = choicesOf(helper.getInheritableFieldValue("/Opt"), opening);
    field.editable = field.kind == Kind::comboBox && (flags & ff_ch_edit) != 0;
    field.multiSelect = field.kind == Kind::listBox && (flags & ff_ch_multi_select) != 0;
    readChosen(widget, helper, opening);
}

/// The state of a button's appearance that is not "Off", as a name with its slash.
std::string onStateOf(QPDFObjectHandle object)
{
    QPDFObjectHandle normal = entryOf(object.getKey("/AP"), "/N");
    if (normal.isDictionary()) {
        for (const std::string &key : normal.getKeys()) {
            if (key != "/Off") {
                return key;
            }
        }
    }
    QPDFObjectHandle state = object.getKey("/AS");
    return state.isName() && state.getName() != "/Off" ? state.getName() : "/Yes";
}

/// The value that a state stands for: where the field lists its values, a state is a position.
QString buttonValue(const QByteArray &state, const QPDFObjectHandle &options, Opening &opening)
{
    bool isNumber = false;
    const int position = state.toInt(&isNumber);
    const QStringList values = FieldReader::buttonValues(options, opening);
    return isNumber && position >= 0 && position < values.size() ? values.at(position)
                                                                 : QString::fromUtf8(state);
}

void readButton(Widget &widget, QPDFObjectHandle object, QPDFFormFieldObjectHelper &helper,
                Opening &opening)
{
    const std::string state = onStateOf(object);
    widget.onState = QByteArray::fromStdString(state.substr(1));
    widget.field.onValue =
        buttonValue(widget.onState, helper.getInheritableFieldValue("/Opt"), opening);
    QPDFObjectHandle shown = object.getKey("/AS");
    if (!shown.isName()) {
        shown = helper.getInheritableFieldValue("/V");
    }
    widget.value.on = shown.isName() && shown.getName() == state;
    widget.inUnison =
        widget.field.kind == Kind::checkBox || (helper.getFlags() & radiosInUnison) != 0;
}

QString groupOf(const FormField &field, const QPDFObjectHandle &object)
{
    const QString identity = field.name.isEmpty()
                                 ? toQString(FieldReader::fieldOf(object).getObjGen().unparse(' '))
                                 : u'.' + field.name;
    return QString::number(static_cast<int>(field.kind)) + identity;
}

/// False for a box so low that the form's letters, somewhat smaller, stand in it only once.
bool holdsTwoLines(const Widget &widget)
{
    constexpr double lineHeight = 1.15; // shares of the letters' size
    constexpr double smaller = 0.8;
    constexpr double least = 6.5; // points, where the form leaves the size open
    const double size = widget.field.fontSize > 0 ? widget.field.fontSize * smaller : least;
    const double height = widget.turn % 180 == 0 ? widget.box.height() : widget.box.width();
    return height >= 2 * lineHeight * size;
}

void readAppearance(Widget &widget, QPDFObjectHandle object, Opening &opening)
{
    opening.countLetters(FieldReader::defaultAppearance(object).size());
    QPDFFormFieldObjectHelper helper(object);
    FieldLook::read(widget, object);
    if (widget.field.multiLine && !holdsTwoLines(widget)) {
        widget.field.multiLine = false;
    }
    QPDFObjectHandle drawn = entryOf(object.getKey("/AP"), "/N");
    widget.stale = !drawn.isStream();
    widget.kept = drawn.isStream() && !drawn.getDict().hasKey(FieldReader::ownDrawing);
    widget.verbatim = !entryOf(helper.getInheritableFieldValue("/AA"), "/F").isDictionary();
}
} // namespace

QPDFObjectHandle FieldReader::fieldOf(const QPDFObjectHandle &widget)
{
    QPDFObjectHandle field = widget;
    for (int depth = 0; depth < Opening::deepest && !field.hasKey("/T"); ++depth) {
        QPDFObjectHandle parent = field.getKey("/Parent");
        if (!parent.isDictionary()) {
            // Without a name anywhere, what lists the widget and says its type is its field.
            QPDFObjectHandle above = QPDFObjectHandle(widget).getKey("/Parent");
            const bool isField =
                entryOf(above, "/Kids").isArray() && entryOf(above, "/FT").isName();
            return isField ? above : widget;
        }
        field = parent;
    }
    return field;
}

QStringList FieldReader::buttonValues(QPDFObjectHandle options, Opening &opening)
{
    QStringList values;
    const int count = options.isArray() ? options.getArrayNItems() : 0;
    for (int i = 0; i < count; ++i) {
        values.append(textOf(options.getArrayItem(i), opening));
    }
    const bool tellApart = QSet<QString>(values.cbegin(), values.cend()).size() == values.size();
    return tellApart ? values : QStringList();
}

std::optional<Widget> FieldReader::read(const QPDFObjectHandle &object, Opening &opening)
{
    checkParents(object, opening);
    QPDFFormFieldObjectHelper helper(object);
    const std::optional<Kind> kind = kindOf(helper);
    if (!kind) {
        return std::nullopt;
    }
    Widget widget;
    FormField &field = widget.field;
    field.kind = *kind;
    field.name = toQString(helper.getFullyQualifiedName());
    field.label = textOf(helper.getInheritableFieldValue("/TU"), opening).simplified();
    if (field.label.isEmpty()) {
        field.label = readable(field.name);
    }
    field.readOnly = (helper.getFlags() & ff_all_read_only) != 0;
    field.required = (helper.getFlags() & ff_all_required) != 0;
    const int flags = flagsOf(object);
    field.shown = (flags & (an_hidden | an_no_view)) == 0;
    widget.printed =
        (flags & an_hidden) == 0 && ((flags & an_print) != 0 || (field.shown && !field.readOnly));
    widget.group = groupOf(field, object);
    if (field.kind == Kind::text) {
        readText(widget, helper, opening);
    } else if (field.kind == Kind::comboBox || field.kind == Kind::listBox) {
        readChoice(widget, helper, opening);
    } else if (field.kind == Kind::checkBox || field.kind == Kind::radio) {
        readButton(widget, object, helper, opening);
        return widget;
    }
    readAppearance(widget, object, opening);
    return widget;
}

QByteArray FieldReader::fontName(const QByteArray &appearance)
{
    const QByteArray name = fontToken(appearance, 2);
    return name.size() > 1 && name.startsWith('/') ? name : QByteArray();
}

double FieldReader::fontSize(const QByteArray &appearance)
{
    return fontToken(appearance, 1).toDouble();
}

QByteArray FieldReader::defaultAppearance(const QPDFObjectHandle &widget)
{
    return QByteArray::fromStdString(QPDFFormFieldObjectHelper(widget).getDefaultAppearance());
}
