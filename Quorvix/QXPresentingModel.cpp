#include "Quorvix/QXPresentingModel.h"

#include "Quorvix/QXOptionalVariant.h"

QXPresentingModel::QXPresentingModel(QObject *parent) : QAbstractListModel(parent) {}

void QXPresentingModel::presentShareItem(const std::optional<QXShareItem> &item)
{
    m_shareItem = item;
    Q_EMIT shareItemChanged();
}

void QXPresentingModel::presentDecodedPayload(std::optional<QXDecodedPayload> payload)
{
    m_decodedPayload = std::move(payload);
    Q_EMIT decodedPayloadChanged();
}

void QXPresentingModel::presentAlert(const QString &message)
{
    m_alertMessage = message;
    Q_EMIT alertMessageChanged();
    setShowAlert(true);
}

void QXPresentingModel::setShowAlert(bool show)
{
    if (m_showAlert == show)
        return;
    m_showAlert = show;
    Q_EMIT showAlertChanged();
}

QVariant QXPresentingModel::shareItemValue() const
{
    return asVariant(m_shareItem);
}

void QXPresentingModel::setShareItemValue(const QVariant &value)
{
    presentShareItem(fromVariant<QXShareItem>(value));
}

QVariant QXPresentingModel::decodedPayloadValue() const
{
    return asVariant(m_decodedPayload);
}

void QXPresentingModel::setDecodedPayloadValue(const QVariant &value)
{
    presentDecodedPayload(fromVariant<QXDecodedPayload>(value));
}
