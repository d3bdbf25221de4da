#pragma once

#include <QtGlobal>

#include <stop_token>

/// The opening of a form: whether it goes on. A small file can be made so that opening it would
/// take hours and all memory; what real forms have is far from the limits here. One thread.
class Opening final
{
public:
    static constexpr int mostWidgets = 10'000;
    /// Flattening takes the square of it; real forms have some hundreds.
    static constexpr int mostWidgetsOnPage = 2'000;
    static constexpr int mostLetters = 100'000; ///< of one text
    static constexpr int mostLettersInAll = 10'000'000;
    static constexpr int deepest = 64; ///< a field below its form; real ones have five steps

    explicit Opening(std::stop_token stop = {});

    [[nodiscard]] const std::stop_token &stop() const { return m_stop; }
    /// Throws QSError::invalid when it was told to stop.
    void goOn() const;
    /// These throw QSError::invalid, which says what there is too much of.
    void beginPage() { m_onPage = 0; }
    void countWidget();
    void countLetters(qsizetype letters);
    void checkDepth(int depth) const;

private:
    std::stop_token m_stop;
    int m_widgets = 0;
    int m_onPage = 0;
    qsizetype m_letters = 0;
};
