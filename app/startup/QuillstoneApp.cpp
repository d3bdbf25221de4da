#include "QuillstoneApp.h"

#include "QSInfo.h"
#include "QSSetup.h"

QuillstoneApp::QuillstoneApp() = default;

QuillstoneApp::~QuillstoneApp()
{
    m_window.reset();
    m_model.reset();
    QSStore::setShared(nullptr);
}

bool QuillstoneApp::start()
{
    m_instance.emplace(QSInfo::dataFolder().path());
    if (!m_instance->isFirst()) {
        return false;
    }
    QSSetup::configure();
    const std::optional<QString> problem = QSSetup::openStore();
    m_model.emplace(m_desktop);
    m_window.emplace(*m_model);
    m_desktop.setWindow(&*m_window);
    QObject::connect(&*m_instance, &QSSingleInstance::broughtForward, &*m_window,
                     &MainWindow::bringForward);
    if (problem) {
        m_model->setMessage(problem);
    }
    m_window->show();
    return true;
}
