#include "QSHelp.h"

#include "QSDirectory.h"
#include "QSDisclaimer.h"
#include "QSInfo.h"
#include "QSMutation.h"
#include "QSTemplates.h"

#include <QFile>
#include <QStringDecoder>

#include <array>

using namespace Qt::Literals::StringLiterals;

namespace {
constexpr qint64 maxFileSize = qint64(1024) * 1024;

QString templateList();
QString states();

struct Topic
{
    QStringView id;
    QStringView title;
    QStringView keywords;        ///< with commas between them
    QString (*body)() = nullptr; ///< null for a topic with a file
};

constexpr std::array table = {
    Topic{u"start", u"Getting started",
          u"begin,first time,new,how to,welcome,introduction,help,lost,stuck,sue,sued"},
    Topic{u"disclaimer", u"Disclaimer: information, not legal advice",
          u"lawyer,attorney,advice,advise,warning,liability,should I,deadline"},
    Topic{u"finder", u"The guided finder (What do you need?)",
          u"which form,task,situation,problem,sue,sued,evicted,divorce,landlord,small claims,"
          "restraining order,start a business"},
    Topic{u"forms", u"Official Forms screen",
          u"find,list,browse,court,category,county,state,number,paperwork"},
    Topic{u"opening", u"Opening an official form (download and updates)",
          u"internet,offline,wifi,old copy,newest,latest,out of date,expired,slow,load"},
    Topic{u"filling", u"Filling in an official PDF",
          u"type,write,complete,sign,signature,check box,tick,save,mistake,undo,erase"},
    Topic{u"printing", u"Printing and flattened PDFs",
          u"print,printer,paper,ink,lock,email,send,file with the court,page"},
    Topic{u"browser", u"Forms that open in the web browser",
          u"website,online,link,internet,e-file,efile,Word,Chrome,Firefox"},
    Topic{u"templates", u"Vell templates",
          u"contract,agreement,letter,lease,receipt,bill of sale,sample,example,blank"},
    Topic{u"template-list", u"The templates, one by one", u"contract,agreement,all templates,which",
          templateList},
    Topic{u"editor", u"Making a document from a template",
          u"type,write,fill in,preview,field,save,date,money,mistake,undo,change,edit"},
    Topic{u"poa", u"Power of attorney and statutory forms",
          u"POA,agent,sign for,parent,elderly,sick,hospital,bank,statute,notary,proxy"},
    Topic{u"profile", u"My Profile (auto-fill)",
          u"name,address,phone,autofill,again and again,repeat,personal,moved"},
    Topic{u"documents", u"My Documents",
          u"lost,find,saved,where,missing,file,open again,delete,rename,copy,recover"},
    Topic{u"export", u"Export formats: PDF, Word, RTF",
          u"Word,docx,LibreOffice,Google Docs,email,send,share,convert,save as,USB"},
    Topic{u"search", u"Searching", u"find,look for,nothing found,spelling,words,results"},
    Topic{u"last-checked", u"Forms Last Checked and link warnings",
          u"broken,dead link,not found,404,warning,outdated,old,up to date,stale,verify"},
    Topic{u"states", u"States covered and what is listed",
          u"where I live,my state,other state,missing,county,local,Colorado,California,Texas,"
          "Florida,New York,Illinois",
          states},
    Topic{u"federal", u"Federal forms (all states)",
          u"IRS,EIN,W-9,tax,immigration,USCIS,I-912,employer,green card,citizenship"},
    Topic{u"fees", u"Fees and fee waivers",
          u"cost,costs,price,pay,money,free,afford,poor,low income,how much,charge"},
    Topic{u"legal-aid", u"Legal aid and lawyer referral",
          u"lawyer,attorney,free,pro bono,help,hotline,phone,advice,violence,abuse,emergency"},
    Topic{u"backup", u"Backup and restore",
          u"lost,new computer,copy,USB,recover,crash,move,safe,save,export everything"},
    Topic{u"look", u"Themes and interface zoom",
          u"blind,eyesight,glasses,vision,small,larger,bigger,letters,text size,font,color,colour,"
          "dark,light,contrast,screen reader"},
    Topic{u"privacy", u"Privacy: where your information is kept",
          u"password,secret,safe,secure,security,cloud,account,share,spy,tracking,delete,folder,"
          "who can see"},
    Topic{u"practice", u"The practice form",
          u"try,test,learn,training,exercise,sample,example,demo"},
    Topic{u"troubleshooting", u"Troubleshooting",
          u"problem,error,broken,crash,frozen,does not work,doesn't work,lost,won't open,"
          "can't print,wrong,stuck,fix"},
    Topic{u"shortcuts", u"Keyboard shortcuts",
          u"keys,keyboard,hotkey,Ctrl,F1,Tab,mouse,without a mouse,blind,screen reader"},
    Topic{u"sources", u"Where the forms come from",
          u"official,government,real,genuine,trust,agency,court,copyright,scam"},
};

QString unreadable(const QString &cause)
{
    return u"This page of the help could not be read (%1). Installing %2 again brings it back."_s
        .arg(cause, QSInfo::appName);
}

/// The text of a topic's file, with the disclaimers in their own words where it names them.
QString fileText(QStringView id)
{
    const std::optional<QDir> resources = QSInfo::resourceFolder();
    if (!resources) {
        return unreadable(u"the program's resources are missing"_s);
    }
    QFile file(resources->filePath(u"help/%1.txt"_s.arg(id)));
    if (!file.open(QIODevice::ReadOnly)) {
        return unreadable(file.errorString());
    }
    const QByteArray bytes = file.read(maxFileSize + 1);
    if (file.error() != QFileDevice::NoError) {
        return unreadable(file.errorString());
    }
    QStringDecoder utf8(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    QString text = QString(utf8.decode(bytes)).remove(u'\r').trimmed();
    if (utf8.hasError() || bytes.size() > maxFileSize || text.isEmpty()) {
        return unreadable(u"its file is damaged"_s);
    }
    return text.replace(u"{disclaimer}"_s, QSDisclaimer::full)
        .replace(u"{short disclaimer}"_s, QSInfo::shortDisclaimer);
}

QString fieldLabels(const QSTemplate &source)
{
    QStringList labels;
    for (const QSField &field : source.fields) {
        labels.append(field.label);
    }
    return labels.join(u", "_s);
}

QString templateList()
{
    QStringList sections;
    for (const QSTemplate &each : QSTemplates::all()) {
        QStringList lines = {u"## "_s + each.title, each.summary};
        if (!each.info.isEmpty()) {
            const QString label =
                QSMutation::on(u"advice-in-help") ? u"You should know"_s : u"Good to know"_s;
            lines.append(u"\u2022 %1: "_s.arg(label) + each.info.simplified());
        }
        lines.append(
            u"\u2022 Listed under %1. Fields: %2."_s.arg(each.category, fieldLabels(each)));
        sections.append(lines.join(u'\n'));
    }
    return sections.isEmpty() ? unreadable(u"there are no templates"_s) : sections.join(u"\n\n"_s);
}

/// "A, B and C"
QString inWords(QStringList names)
{
    const QString last = names.takeLast();
    return names.isEmpty() ? last : names.join(u", "_s) + u" and "_s + last;
}

QString entriesLine(const QSDirectory &directory, const QSJurisdiction &place)
{
    QStringList titles;
    for (QSCategory category : directory.categoriesFor(place.code)) {
        titles.append(QSCategories::info(category).title.toString());
    }
    return u"\u2022 Forms and filings listed: %1 (%2)"_s
        .arg(directory.entriesFor(place.code).size())
        .arg(titles.join(u", "_s));
}

QString section(const QSDirectory &directory, const QSJurisdiction &place)
{
    const std::array links = {
        std::pair(u"Self-help center"_s, place.selfHelp),
        std::pair(u"Court forms"_s, place.courtForms),
        std::pair(u"Court fees"_s, place.courtFees),
        std::pair(u"Business filings"_s, place.business),
        std::pair(u"Business filing fees"_s, place.businessFees),
    };
    QStringList lines = {u"## "_s + place.name, entriesLine(directory, place)};
    for (const auto &[label, url] : links) {
        if (!url.isEmpty()) {
            lines.append(u"\u2022 %1: %2"_s.arg(label, url));
        }
    }
    return lines.join(u'\n');
}

QString states()
{
    const QSDirectory &directory = QSDirectory::shared();
    QStringList names;
    QStringList sections;
    for (const QSJurisdiction &state : directory.states()) {
        names.append(state.name);
        sections.append(section(directory, state));
    }
    if (names.isEmpty()) {
        return unreadable(QSDirectory::loadError());
    }
    return u"%1 covers %2. Forms of the federal government are listed beside each state's own. "
           "The pages below are official ones; courts and agencies may move them.\n\n"_s.arg(
               QSInfo::appName, inWords(names)) +
           sections.join(u"\n\n"_s);
}
} // namespace

namespace QSHelp {
QList<VellHelpTopic> topics()
{
    QList<VellHelpTopic> all;
    for (const Topic &topic : table) {
        all.append({topic.id.toString(), topic.title.toString(),
                    topic.body ? topic.body() : fileText(topic.id),
                    topic.keywords.toString().split(u',')});
    }
    return all;
}
} // namespace QSHelp
