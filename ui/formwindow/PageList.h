#pragma once

#include "PageRenderer.h"

#include <QListWidget>
#include <QSet>

class QSPDFDocument;

/// The pages of a form as small pictures, drawn when nothing else is to be drawn. Main thread.
class PageList final : public QListWidget, public PageRenderer::Client
{
    Q_OBJECT

public:
    explicit PageList(PageRenderer &renderer, QWidget *parent = nullptr);

    /// Lists a document's pages; none when it is null.
    void open(const std::shared_ptr<QSPDFDocument> &document);
    /// Marks the page that is being read.
    void setCurrentPage(int page);
    /// A page looks different from its picture.
    void outdate(int page);

    [[nodiscard]] std::optional<PageRenderer::Job> nextJob() override;
    [[nodiscard]] bool wants(const PageRenderer::Job &) const override { return isVisible(); }
    void take(const PageRenderer::Job &job, const QImage &drawing) override;
    void lose(const PageRenderer::Job &job, bool hopeless) override;

Q_SIGNALS:
    /// The user wants to see a page.
    void pageChosen(int page);

protected:
    void resizeEvent(QResizeEvent *event) override;
    void scrollContentsBy(int dx, int dy) override;
    void showEvent(QShowEvent *event) override;

private:
    [[nodiscard]] double dotsPerInch(int page) const;
    void markCurrent();

    PageRenderer &m_renderer;
    std::shared_ptr<QSPDFDocument> m_document;
    QSet<int> m_lacking; ///< pages whose picture is missing or out of date
};
