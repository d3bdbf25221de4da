#include "PageRenderer.h"

#include "QSPDFDocument.h"

#include <chrono>
#include <utility>

namespace {
constexpr auto patience = std::chrono::seconds(3);
} // namespace

PageRenderer::PageRenderer(QObject *parent) : QObject(parent)
{
    m_pool.setMaxThreadCount(1);
    m_patience.setSingleShot(true);
    m_patience.setInterval(patience);
    connect(&m_patience, &QTimer::timeout, this, [this] { setSlowPage(m_job.page); });
}

PageRenderer::~PageRenderer()
{
    if (m_cancelled) {
        *m_cancelled = true;
    }
    m_pool.waitForDone();
}

void PageRenderer::open(const std::shared_ptr<QSPDFDocument> &document,
                        const QList<Client *> &clients)
{
    if (m_cancelled) {
        *m_cancelled = true;
    }
    ++m_run; // what is still drawn of the document before is nobody's
    m_patience.stop();
    setSlowPage({});
    m_waiting = nullptr;
    m_document = document;
    m_clients = clients;
    wake();
}

void PageRenderer::wake()
{
    if (m_waiting) {
        if (!m_waiting->wants(m_job)) {
            *m_cancelled = true;
        }
        return;
    }
    if (!m_document) {
        return;
    }
    for (Client *client : std::as_const(m_clients)) {
        if (const std::optional<Job> job = client->nextJob()) {
            start(client, *job);
            return;
        }
    }
}

void PageRenderer::start(Client *client, const Job &job)
{
    m_waiting = client;
    m_job = job;
    m_stopped = false;
    m_patience.start();
    m_cancelled = std::make_shared<std::atomic_bool>(false);
    m_pool.start([this, run = ++m_run, document = m_document, cancelled = m_cancelled, job] {
        const PageDrawing drawing = document->render(job.page, job.dotsPerInch, job.clip,
                                                     [&cancelled] { return cancelled->load(); });
        QMetaObject::invokeMethod(
            this, [this, run, drawing] { finish(run, drawing); }, Qt::QueuedConnection);
    });
}

void PageRenderer::finish(int run, const PageDrawing &drawing)
{
    if (run != m_run) {
        return;
    }
    Client *client = std::exchange(m_waiting, nullptr);
    m_patience.stop();
    setSlowPage({});
    if (drawing.outcome == PageDrawing::Outcome::drawn) {
        client->take(m_job, drawing.image);
    } else {
        client->lose(m_job, m_stopped || drawing.outcome == PageDrawing::Outcome::failed);
    }
    wake();
}

void PageRenderer::stop()
{
    if (m_waiting) {
        m_stopped = true;
        *m_cancelled = true;
    }
}

void PageRenderer::setSlowPage(const std::optional<int> &page)
{
    if (std::exchange(m_slowPage, page) != page) {
        Q_EMIT slowPageChanged();
    }
}
