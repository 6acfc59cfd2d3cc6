#include "Quorvix/QXDecodedPayloadModel.h"

QXDecodedPayloadModel::QXDecodedPayloadModel(QObject *parent) : QAbstractListModel(parent) {}

int QXDecodedPayloadModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_documents.size());
}

QVariant QXDecodedPayloadModel::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid))
        return {};
    switch (role) {
    case Qt::DisplayRole:
    case TitleRole:
        return m_payload.sections[index.row()].title;
    case DocumentRole:
        return QVariant::fromValue(m_documents[size_t(index.row())].get());
    default:
        return {};
    }
}

QHash<int, QByteArray> QXDecodedPayloadModel::roleNames() const
{
    return {{TitleRole, "title"}, {DocumentRole, "document"}};
}

void QXDecodedPayloadModel::setPayload(const QVariant &value)
{
    if (value.canConvert<QXDecodedPayload>())
        show(value.value<QXDecodedPayload>());
}

void QXDecodedPayloadModel::clear()
{
    show({});
}

void QXDecodedPayloadModel::show(const QXDecodedPayload &payload)
{
    beginResetModel();
    // The old documents must outlive their delegates, which endResetModel() removes.
    const auto shown = std::move(m_documents);
    m_documents.clear();
    m_payload = payload;
    for (const QXDecodedSection &section : std::as_const(m_payload.sections))
        m_documents.push_back(std::make_unique<QXTextDocument>(section.content));
    endResetModel();
    Q_EMIT payloadChanged();
}
