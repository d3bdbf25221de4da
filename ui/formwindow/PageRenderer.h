#pragma once

#include <QImage>
#include <QObject>
#include <QRect>
#include <QThreadPool>
#include <QTimer>

#include <atomic>
#include <memory>
#include <optional>

class QSPDFDocument;
struct PageDrawing;

/// Draws pages of a form away from the main thread, one at a time. It keeps no queue: whenever it
/// is idle it asks its clients what they lack now, so that what came into view last is drawn next.
///
/// Main thread. Its clients have to outlive it or be taken from it.
class PageRenderer final : public QObject
{
    Q_OBJECT

public:
    struct Job
    {
        int page = 0; ///< from 0
        double dotsPerInch = 0;
        QRect clip; ///< in dots; null for the whole page
    };

    /// Somebody who shows drawings of pages.
    class Client
    {
    public:
        Client() = default;
        virtual ~Client() = default;
        Client(const Client &) = delete;
        Client &operator=(const Client &) = delete;

        /// What to draw next, if anything. It is answered by either take() or lose().
        [[nodiscard]] virtual std::optional<Job> nextJob() = 0;
        /// False when a job that runs is of no use any more.
        [[nodiscard]] virtual bool wants(const Job &job) const = 0;
        virtual void take(const Job &job, const QImage &drawing) = 0;
        /// The job made way and may be asked for again; hopeless when it can't be drawn.
        virtual void lose(const Job &job, bool hopeless) = 0;
    };

    explicit PageRenderer(QObject *parent = nullptr);
    /// Waits for the drawing that runs, which is cut short.
    ~PageRenderer() override;

    /// Draws another document, or none, for these clients; the first goes before the others.
    void open(const std::shared_ptr<QSPDFDocument> &document, const QList<Client *> &clients);
    /// Something to draw may have come up, or what is being drawn may not be wanted any more.
    void wake();
    /// The page whose drawing takes so long that somebody may want to stop it; absent when none
    /// does.
    [[nodiscard]] std::optional<int> slowPage() const { return m_slowPage; }
    /// Ends the drawing that runs. It counts as one that can't be made.
    void stop();

Q_SIGNALS:
    void slowPageChanged();

private:
    void start(Client *client, const Job &job);
    void finish(int run, const PageDrawing &drawing);
    void setSlowPage(const std::optional<int> &page);

    QThreadPool m_pool; ///< of its own: the shared one may be busy with the network for long
    std::shared_ptr<QSPDFDocument> m_document;
    QList<Client *> m_clients;
    std::shared_ptr<std::atomic_bool> m_cancelled; ///< of the job that runs
    Client *m_waiting = nullptr;                   ///< whose job runs; null when idle
    Job m_job;
    int m_run = 0;
    bool m_stopped = false;
    QTimer m_patience; ///< runs out when the job that runs takes long
    std::optional<int> m_slowPage;
};
