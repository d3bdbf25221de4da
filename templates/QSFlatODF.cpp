#include "QSFlatODF.h"

#include "QSBlockStyle.h"
#include "QSDirections.h"
#include "QSInfo.h"
#include "QSMutation.h"
#include "QSPageLayout.h"

#include <QXmlStreamWriter>

#include <initializer_list>
#include <utility>

namespace {
constexpr QStringView fontName = u"Times New Roman";
constexpr QStringView rightToLeft = u"_RTL";

QString points(qreal length)
{
    return QString::number(length) + QStringLiteral("pt");
}

/// A style's name as an XML name: other signs are written _hex_, as the format asks.
QString styleId(const QSBlockStyle &style)
{
    return style.name.toString().replace(u' ', QStringLiteral("_20_"));
}

class Writer final
{
public:
    explicit Writer(QByteArray *bytes) : m_xml(bytes) {}

    void write(const QSRendered &rendered);

private:
    using Attributes = std::initializer_list<std::pair<const char *, QStringView>>;
    /// Names are written with their prefix, which open() binds.
    void start(const char *name, const Attributes &attributes = {});
    void empty(const char *name, const Attributes &attributes);
    void end() { m_xml.writeEndElement(); }

    void open();
    void meta(const QString &title);
    void font();
    void styles();
    void defaultStyle();
    void blockKindStyle(const QSBlockStyle &style);
    void textProperties(const QSBlockStyle &style);
    void rightToLeftStyles();
    void pageLayout();
    void masterPage();
    void block(const QSBlock &block);
    void flow(const QString &text);

    QXmlStreamWriter m_xml;
};

void Writer::write(const QSRendered &rendered)
{
    m_xml.writeStartDocument();
    open();
    meta(rendered.title);
    font();
    styles();
    start("office:automatic-styles");
    rightToLeftStyles();
    pageLayout();
    end();
    masterPage();
    start("office:body");
    start("office:text");
    for (const QSBlock &each : rendered.blocks) {
        if (QSMutation::on(u"office-drops-rows") && each.kind == QSBlock::Kind::row) {
            continue;
        }
        block(each);
    }
    m_xml.writeEndDocument();
}

void Writer::start(const char *name, const Attributes &attributes)
{
    m_xml.writeStartElement(QString::fromLatin1(name));
    for (const auto &[key, value] : attributes) {
        m_xml.writeAttribute(QString::fromLatin1(key), value.toString());
    }
}

void Writer::empty(const char *name, const Attributes &attributes)
{
    start(name, attributes);
    end();
}

void Writer::open()
{
    start("office:document",
          {{"xmlns:office", u"urn:oasis:names:tc:opendocument:xmlns:office:1.0"},
           {"xmlns:style", u"urn:oasis:names:tc:opendocument:xmlns:style:1.0"},
           {"xmlns:text", u"urn:oasis:names:tc:opendocument:xmlns:text:1.0"},
           {"xmlns:meta", u"urn:oasis:names:tc:opendocument:xmlns:meta:1.0"},
           {"xmlns:fo", u"urn:oasis:names:tc:opendocument:xmlns:xsl-fo-compatible:1.0"},
           {"xmlns:svg", u"urn:oasis:names:tc:opendocument:xmlns:svg-compatible:1.0"},
           {"xmlns:dc", u"http://purl.org/dc/elements/1.1/"},
           {"office:version", u"1.3"},
           {"office:mimetype", u"application/vnd.oasis.opendocument.text"}});
}

void Writer::meta(const QString &title)
{
    start("office:meta");
    m_xml.writeTextElement(QStringLiteral("meta:generator"),
                           QSInfo::appName + u'/' + QSInfo::version());
    m_xml.writeTextElement(QStringLiteral("dc:title"), lineFlow(title));
    m_xml.writeTextElement(QStringLiteral("dc:language"), QStringLiteral("en-US"));
    end();
}

void Writer::font()
{
    start("office:font-face-decls");
    empty("style:font-face", {{"style:name", fontName},
                              {"svg:font-family", u"'Times New Roman'"},
                              {"style:font-family-generic", u"roman"},
                              {"style:font-pitch", u"variable"}});
    end();
}

void Writer::styles()
{
    start("office:styles");
    defaultStyle();
    for (const QSBlockStyle &style : blockStyles) {
        blockKindStyle(style);
    }
    end();
}

/// What all paragraphs have in common: the font also for Asian and complex scripts, which word
/// processors replace by one that has the letters.
void Writer::defaultStyle()
{
    start("style:default-style", {{"style:family", u"paragraph"}});
    empty("style:paragraph-properties",
          {{"style:tab-stop-distance", points(blockTabDistance)}, {"style:writing-mode", u"page"}});
    empty("style:text-properties", {{"style:font-name", fontName},
                                    {"style:font-name-asian", fontName},
                                    {"style:font-name-complex", fontName},
                                    {"fo:language", u"en"},
                                    {"fo:country", u"US"},
                                    {"style:language-asian", u"zh"},
                                    {"style:country-asian", u"CN"},
                                    {"style:language-complex", u"ar"},
                                    {"style:country-complex", u"SA"},
                                    {"fo:hyphenate", u"false"}});
    end();
    start("style:style",
          {{"style:name", u"Standard"}, {"style:family", u"paragraph"}, {"style:class", u"text"}});
    empty("style:paragraph-properties",
          {{"fo:line-height", QString::number(blockLineHeight * 100) + u'%'}});
    textProperties({});
    end();
}

void Writer::blockKindStyle(const QSBlockStyle &style)
{
    start("style:style", {{"style:name", styleId(style)},
                          {"style:display-name", style.name},
                          {"style:family", u"paragraph"},
                          {"style:parent-style-name", u"Standard"},
                          {"style:class", u"text"}});
    start("style:paragraph-properties",
          {{"fo:keep-with-next", style.keepWithNext ? u"always" : u"auto"},
           {"fo:margin-top", points(style.before)},
           {"fo:margin-bottom", points(style.after)},
           {"fo:text-align", style.centred ? u"center" : u"start"}});
    if (style.tabStops) {
        start("style:tab-stops");
        for (const qreal stop : blockTabStops) {
            empty("style:tab-stop", {{"style:position", points(stop)}, {"style:type", u"left"}});
        }
        end();
    }
    end();
    textProperties(style);
    end();
}

void Writer::textProperties(const QSBlockStyle &style)
{
    const QString size = points(style.size);
    const QStringView weight = style.bold ? u"bold" : u"normal";
    const QStringView slope = style.italic ? u"italic" : u"normal";
    empty("style:text-properties", {{"fo:color", (style.grey ? blockGrey : blockBlack).name()},
                                    {"fo:font-size", size},
                                    {"style:font-size-asian", size},
                                    {"style:font-size-complex", size},
                                    {"fo:font-weight", weight},
                                    {"style:font-weight-asian", weight},
                                    {"style:font-weight-complex", weight},
                                    {"fo:font-style", slope},
                                    {"style:font-style-asian", slope},
                                    {"style:font-style-complex", slope}});
}

/// A paragraph's direction is not found out by word processors: paragraphs that begin in Arabic or
/// Hebrew get theirs said.
void Writer::rightToLeftStyles()
{
    for (const QSBlockStyle &style : blockStyles) {
        const QString id = styleId(style);
        start("style:style", {{"style:name", id + rightToLeft.toString()},
                              {"style:family", u"paragraph"},
                              {"style:parent-style-name", id}});
        empty("style:paragraph-properties",
              {{"style:writing-mode", u"rl-tb"},
               {"fo:text-align", style.centred ? u"center" : u"end"}});
        end();
    }
}

void Writer::pageLayout()
{
    constexpr QSizeF size = QSPageLayout::pageSize;
    start("style:page-layout", {{"style:name", u"Letter"}});
    empty("style:page-layout-properties", {{"fo:page-width", points(size.width())},
                                           {"fo:page-height", points(size.height())},
                                           {"style:print-orientation", u"portrait"},
                                           {"fo:margin", points(QSPageLayout::margin)}});
    end();
}

void Writer::masterPage()
{
    start("office:master-styles");
    empty("style:master-page",
          {{"style:name", u"Standard"}, {"style:page-layout-name", u"Letter"}});
    end();
}

/// Headings are headings to a screen reader and in the word processor's outline.
void Writer::block(const QSBlock &block)
{
    const QString text = blockFlow(block);
    QString style = styleId(blockStyle(block.kind));
    if (QSDirections::beginsOnTheRight(text)) {
        style += rightToLeft;
    }
    if (block.kind == QSBlock::Kind::heading) {
        start("text:h", {{"text:style-name", style}, {"text:outline-level", u"1"}});
    } else {
        start("text:p", {{"text:style-name", style}});
    }
    flow(QSDirections::withMarks(text));
    end();
}

/// Readers of the format drop white space at the ends and take a run of it for one space, so all
/// but single spaces between words are written as elements.
void Writer::flow(const QString &text)
{
    const auto isWord = [&](qsizetype i) {
        return i < text.size() && text[i] != u' ' && text[i] != u'\t' &&
               text[i] != QChar::LineSeparator;
    };
    for (qsizetype i = 0; i < text.size();) {
        const qsizetype begin = i;
        if (text[i] == u'\t') {
            empty("text:tab", {});
            ++i;
        } else if (text[i] == QChar::LineSeparator) {
            empty("text:line-break", {});
            ++i;
        } else if (text[i] == u' ') {
            while (i < text.size() && text[i] == u' ') {
                ++i;
            }
            empty("text:s", {{"text:c", QString::number(i - begin)}});
        } else {
            while (isWord(i) || (isWord(i + 1) && text[i] == u' ')) {
                ++i;
            }
            m_xml.writeCharacters(text.sliced(begin, i - begin));
        }
    }
}
} // namespace

QByteArray QSFlatODF::write(const QSRendered &rendered)
{
    QByteArray bytes;
    Writer(&bytes).write(rendered);
    return bytes;
}
