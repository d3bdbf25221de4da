#include "AppModel.h"
#include "Groups.h"
#include "NobodysDesktop.h"
#include "QSDisclaimer.h"
#include "QSInfo.h"
#include "QSPrefs.h"
#include "QSTestRun.h"

#include <QSettings>

using namespace Qt::Literals::StringLiterals;

namespace {
/// Whether the disclaimer comes up in a program that is started now.
bool comesUp()
{
    NobodysDesktop desktop;
    return AppModel(desktop).showDisclaimer();
}
} // namespace

void Groups::disclaimer(QSTestRun &run)
{
    QSTestRun::begin(u"Disclaimer at first launch"_s);
    NobodysDesktop desktop;
    AppModel model(desktop);
    run.check(model.showDisclaimer(), u"the first launch shows the disclaimer"_s);
    model.setShowDisclaimer(false);
    run.check(comesUp(), u"closed without accepting, it comes up at the next launch"_s);
    model.setShowDisclaimer(true);
    model.acceptDisclaimer();
    run.check(!model.showDisclaimer() && !comesUp(), u"accepted, it stays away"_s);
    run.check(QSPrefs::settings()->value(u"qs.disclaimerAccepted.v1"_s).toBool(),
              u"that it was accepted is kept in the preferences"_s);
    model.setShowDisclaimer(true);
    run.check(model.showDisclaimer() && !comesUp(), u"shown again on demand, it stays accepted"_s);
    run.check(QSDisclaimer::full.contains(u"nothing in it is legal advice"_s) &&
                  QSInfo::shortDisclaimer.contains(u"gives no legal advice"_s),
              u"both its texts say that this is no legal advice"_s);
}
