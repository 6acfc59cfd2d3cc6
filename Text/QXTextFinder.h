#pragma once

#include "Controls/QXFinder.h"
#include "Text/QXTextMatches.h"
#include "Text/QXTextView.h"

#include <QtCore/QPointer>

#include <utility>
#include <vector>

/// Finds a text in the views of a screen, from the uppermost to the lowest. Main thread only.
class QXTextFinder : public QXFinder
{
    Q_OBJECT
    QML_ELEMENT

public:
    explicit QXTextFinder(QObject *parent = nullptr);

    /// Adds a view, until it is destroyed.
    Q_INVOKABLE void add(QXTextView *view);
    Q_INVOKABLE bool focusMatch() override;

protected:
    void begin() override;
    [[nodiscard]] bool isComplete() const override { return m_searched == m_places.size(); }
    void searchFurther() override;
    [[nodiscard]] qsizetype count() const override;
    [[nodiscard]] qsizetype matchAtCursor() const override;
    [[nodiscard]] bool isSelected(qsizetype match) const override;
    void show(qsizetype match) override;

private:
    struct Place
    {
        QPointer<QXTextView> view;
        QXTextMatches matches;
    };

    void searchAgain();
    void forget();
    void mark();
    /// The place of a match, and the number that it has there. The place is null for a match that is not
    /// known.
    [[nodiscard]] std::pair<const Place *, qsizetype> placeOf(qsizetype match) const;

    std::vector<QPointer<QXTextView>> m_views;
    /// The views in their order, when the search began.
    std::vector<Place> m_places;
    /// The number of places that are completely searched.
    size_t m_searched = 0;
};
