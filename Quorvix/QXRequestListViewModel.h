#pragma once

#include "Quorvix/QXRequestDetailsViewModel.h"
#include "Quorvix/QXShareItem.h"
#include "Quorvix/QXTraceList.h"

#include "Platform/NSNotificationCenter.h"

#include <QtCore/QAbstractListModel>
#include <QtQml/qqmlregistration.h>

/// The request list: the recorder's traces, live, narrowed by a search text. Main thread only.
///
/// A row is a trace that the search leaves visible, in the recorder's order. A change of the recorder reaches
/// the model in a later turn of the event loop and touches only the rows that it concerns; the cost of a
/// change does not grow with the number of traces.
class QXRequestListViewModel : public QAbstractListModel
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QString _searchText READ searchText WRITE setSearchText NOTIFY _searchTextChanged)
    /// A QXShareItem while the share sheet is to be shown, else undefined; assigning undefined clears it.
    Q_PROPERTY(QVariant _shareItem READ shareItemValue WRITE setShareItemValue NOTIFY _shareItemChanged)
    /// Empty while there is no message.
    Q_PROPERTY(QString _alertMessage READ alertMessageText NOTIFY _alertMessageChanged)
    Q_PROPERTY(bool _showAlert READ showAlert WRITE setShowAlert NOTIFY _showAlertChanged)

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

    /// All captured traces, as of the last change that reached the model.
    [[nodiscard]] const QXTraceList &requests() const noexcept { return m_requests; }
    /// The traces that the search leaves visible; valid until the model changes.
    [[nodiscard]] std::vector<const QXRequestTrace *> filteredRequests() const;
    /// The trace of a row, which must exist.
    [[nodiscard]] const QXRequestTrace &trace(int row) const { return cell(row)->trace; }

    [[nodiscard]] const std::optional<QXShareItem> &shareItem() const noexcept { return m_shareItem; }
    [[nodiscard]] const std::optional<QString> &alertMessage() const noexcept { return m_alertMessage; }
    [[nodiscard]] bool showAlert() const noexcept { return m_showAlert; }
    void setShowAlert(bool show);

    /// Writes the visible traces to a HAR file in the temporary folder and publishes it as the share item; a
    /// failure shows the alert instead.
    Q_INVOKABLE void exportAll();
    /// The details of a row as they stand now, to be owned by QML; null when there is no such row.
    Q_INVOKABLE QXRequestDetailsViewModel *makeDetails(int row) const;
    /// Empties the recorder. The rows go when its notification arrives.
    Q_INVOKABLE void clear();

Q_SIGNALS:
    void _searchTextChanged();
    void _shareItemChanged();
    void _alertMessageChanged();
    void _showAlertChanged();

private:
    [[nodiscard]] bool isFiltering() const { return !m_query.isEmpty(); }
    [[nodiscard]] const QXTraceList::CellPtr &cell(int row) const;
    [[nodiscard]] QVariant shareItemValue() const;
    void setShareItemValue(const QVariant &value);
    [[nodiscard]] QString alertMessageText() const { return m_alertMessage.value_or(QString()); }

    void scheduleRefresh();
    void refresh();
    void resetTo(const QXTraceList &requests);
    void extendTo(const QXTraceList &requests);
    void updateMatch(qsizetype position);
    void fail(const QString &message);

    QString m_searchText;
    QByteArray m_query;
    QXTraceList m_requests;
    /// While filtering: the places of the matches, counted from the oldest trace, ascending.
    std::vector<quint32> m_matches;
    std::optional<QXShareItem> m_shareItem;
    std::optional<QString> m_alertMessage;
    bool m_showAlert = false;
    bool m_refreshScheduled = false;
    Quorvix::NSNotificationObserver m_observer;
};
