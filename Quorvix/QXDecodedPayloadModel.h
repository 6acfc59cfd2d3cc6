#pragma once

#include "Quorvix/QXDecodedPayload.h"

#include "Text/QXTextDocument.h"

#include <QtCore/QAbstractListModel>
#include <QtQml/qqmlregistration.h>

#include <memory>
#include <vector>

/// The sections of a decoded payload, each with the document that shows it. Main thread only.
class QXDecodedPayloadModel : public QAbstractListModel
{
    Q_OBJECT
    QML_ELEMENT
    /// A QXDecodedPayload. Assigning undefined keeps the last payload, so that a screen that is closing
    /// still shows it; clear() removes it.
    Q_PROPERTY(QVariant payload READ payload WRITE setPayload NOTIFY payloadChanged)
    Q_PROPERTY(QString title READ title NOTIFY payloadChanged)

public:
    enum Role { TitleRole = Qt::UserRole, DocumentRole };

    explicit QXDecodedPayloadModel(QObject *parent = nullptr);

    [[nodiscard]] int rowCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex &index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

    [[nodiscard]] QString title() const { return m_payload.title; }

    Q_INVOKABLE void clear();

Q_SIGNALS:
    void payloadChanged();

private:
    [[nodiscard]] QVariant payload() const { return QVariant::fromValue(m_payload); }
    void setPayload(const QVariant &value);
    void show(const QXDecodedPayload &payload);

    QXDecodedPayload m_payload;
    /// The document of each section.
    std::vector<std::unique_ptr<QXTextDocument>> m_documents;
};
