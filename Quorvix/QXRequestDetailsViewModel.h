#pragma once

#include "Quorvix/QXBodyLines.h"
#include "Quorvix/QXRequestTrace.h"
#include "Quorvix/QXSystemColor.h"

#include <QtCore/QAbstractListModel>
#include <QtQml/qqmlregistration.h>

#include <vector>

/// All that is known about one exchange, as the rows of the details screen. Main thread only.
///
/// Sections follow one another; each is a title and either labelled values or the lines of a body. The trace
/// is the one given, whatever the recorder makes of the exchange later.
class QUORVIX_INTERNAL_EXPORT QXRequestDetailsViewModel final : public QAbstractListModel
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made by the request list")

public:
    enum Role { KindRole = Qt::UserRole, LabelRole, TextRole, TextColorRole, IsFirstRole, IsLastRole };

    enum Kind { SectionTitle, ValueRow, BodyLine };
    Q_ENUM(Kind)

    explicit QXRequestDetailsViewModel(const QXRequestTrace &request, QObject *parent = nullptr);

    [[nodiscard]] int rowCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex &index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

    [[nodiscard]] const QXRequestTrace &request() const noexcept { return m_request; }

private:
    struct Value
    {
        QString label;
        QString text;
        /// Clear stands for the primary text colour.
        QXSystemColor::Value color = QXSystemColor::Clear;
    };
    struct Section
    {
        QString title;
        std::vector<Value> values;
        /// Takes the place of the values.
        std::optional<QXBodyLines> body;

        [[nodiscard]] int contentCount() const { return body ? body->count() : int(values.size()); }
    };

    void addValues(const QString &title, std::vector<Value> values);
    void addHeaders(const QString &title, const std::optional<HTTPHeaderFields> &headers);
    void addBody(const QString &title, const std::optional<QByteArray> &body);
    void addRequest();
    void addResponse(const QXResponseTrace &response);
    [[nodiscard]] static QVariant titleData(const Section &section, int role);
    [[nodiscard]] static QVariant contentData(const Section &section, int index, int role);

    QXRequestTrace m_request;
    std::vector<Section> m_sections;
};
