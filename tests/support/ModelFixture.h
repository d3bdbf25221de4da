#pragma once

#include "AppModel.h"
#include "FakeDesktop.h"
#include "QSStore.h"
#include "ScratchUser.h"

#include <QTest>

#include <memory>

/// The model on a scratch user's empty database; a fake desktop answers for the person.
class ModelFixture
{
protected:
    // the buttons of the question about unsaved changes
    static constexpr int save = 0;
    static constexpr int dontSave = 1;
    static constexpr int cancel = 2;

    void beginModel()
    {
        m_user = std::make_unique<ScratchUser>();
        m_desktop = std::make_unique<FakeDesktop>();
        restartModel();
    }

    /// As after an end without any farewell and a new start of the program.
    void restartModel()
    {
        m_model.reset();
        QSStore::setShared(nullptr);
        QSStore::setShared(std::make_unique<QSStore>(QSInfo::databaseURL()));
        m_model = std::make_unique<AppModel>(*m_desktop);
    }

    /// Fails the test when the desktop was asked other things than the test prepared for.
    void endModel()
    {
        m_model.reset();
        QSStore::setShared(nullptr);
        m_user.reset();
        QVERIFY2(m_desktop->settled(), qPrintable(m_desktop->unexpected.join(u'\n')));
    }

    std::unique_ptr<ScratchUser> m_user;
    std::unique_ptr<FakeDesktop> m_desktop;
    std::unique_ptr<AppModel> m_model;
};
