#pragma once

#include "Quorvix/QXPresentingModel.h"
#include "Quorvix/QXRequestDetailsViewModel.h"
#include "Quorvix/QXTraceList.h"
#include "Quorvix/QXTraceSearch.h"

#include "Platform/NSNotificationCenter.h"

#include <QtCore/QBasicTimer>
#include <QtQml/qqmlregistration.h>

/// The request list: the traces of the recorder, filtered by a search text. Main thread only.
///
/// The rows are the traces that match the search, in the recorder's order. A search through so many bytes of
/// URLs that it would block the thread goes on in later turns of the event loop, from the newest trace to the
/// oldest, and appends rows. A change of the recorder reaches the model in a later turn of the event loop,
/// together with those of the same few milliseconds, and affects only the rows it concerns. The cost of a
/// change does not grow with the number of traces. Another search text changes the data of rows and their
/// number; it resets nothing, so that a view keeps its rows.
class QXRequestListViewModel : public QXPresentingModel
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QString _searchText READ searchText WRITE setSearchText NOTIFY _searchTextChanged)
    // The inherited properties under the names that belong to this model.
    Q_PROPERTY(QVariant _shareItem READ shareItemValue WRITE setShareItemValue NOTIFY shareItemChanged)
    Q_PROPERTY(QString _alertMessage READ alertMessageText NOTIFY alertMessageChanged)
    Q_PROPERTY(bool _showAlert READ showAlert WRITE setShowAlert NOTIFY showAlertChanged)

public:
    enum Role {
        IdRole = Qt::UserRole,
        TitleRole,
        StatusTextRole,
        StatusColorRole,
        HasErrorRole,
        TintColorRole,
        TintOpacityRole
    };

    explicit QXRequestListViewModel(QObject *parent = nullptr);

    [[nodiscard]] int rowCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex &index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

    [[nodiscard]] const QString &searchText() const noexcept { return m_searchText; }
    void setSearchText(const QString &text);
    /// Makes what a search reads, in many short turns of the event loop, so that the first letter finds it.
    Q_INVOKABLE void prepareSearch();
    /// Whether a search, or what it reads, is not complete yet.
    [[nodiscard]] bool isSearching() const { return m_searchTimer.isActive(); }

    /// All captured traces, as of the last change that has reached the model.
    [[nodiscard]] const QXTraceList &requests() const noexcept { return m_requests; }
    /// All traces that match the search, also those that have no row yet; valid until the model changes.
    [[nodiscard]] std::vector<const QXRequestTrace *> filteredRequests() const;
    /// The trace of a row, which must exist.
    [[nodiscard]] const QXRequestTrace &trace(int row) const { return cell(row)->trace; }

    /// Writes the visible traces to a HAR file in the temporary folder and sets shareItem to it. Shows the
    /// alert if this fails.
    Q_INVOKABLE void exportAll();
    /// Makes the details model of a row from its current trace. The screen that shows it becomes its owner.
    /// Null if the row does not exist.
    Q_INVOKABLE QXRequestDetailsViewModel *makeDetails(int row) const;
    /// Copies the URL of a row to the clipboard, unless the row does not exist or has none.
    Q_INVOKABLE void copyUrl(int row) const;
    /// Clears the recorder. The rows are removed when its notification arrives.
    Q_INVOKABLE void clear();

Q_SIGNALS:
    void _searchTextChanged();
    /// Emitted before the rows become those of another search.
    void searchAboutToChange();

protected:
    void timerEvent(QTimerEvent *event) override;

private:
    [[nodiscard]] const QXTraceList::CellPtr &cell(int row) const;
    [[nodiscard]] int rowCountOf(const QXTraceSearch &search) const;

    void showSearch(QXTraceSearch search);
    void showMatches();
    void continueSearchLater();
    void continueSearch();
    void scheduleRefresh();
    void refresh();
    void resetTo(const QXTraceList &requests);
    void extendTo(const QXTraceList &requests);
    void updateMatch(qsizetype position);

    QString m_searchText;
    QXTraceList m_requests;
    QXTraceSearch m_search;
    /// Made when they are first needed.
    mutable QXTraceTexts m_texts;
    bool m_needsTexts = false;
    /// The number of rows, which follows the search in steps that a view understands.
    int m_rowCount = 0;
    bool m_refreshScheduled = false;
    std::chrono::steady_clock::time_point m_refreshedAt;
    QBasicTimer m_refreshTimer;
    QBasicTimer m_searchTimer;
    Quorvix::NSNotificationObserver m_observer;
};
