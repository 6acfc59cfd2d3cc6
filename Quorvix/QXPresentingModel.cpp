#include "Quorvix/QXPresentingModel.h"

#include "Quorvix/QXOptionalVariant.h"

#include "Platform/FreedMemory.h"

#include <QtCore/QPointer>
#include <QtQml/QQmlEngine>

#include <utility>

namespace {

/// The last child of a screen, by which the screen owns a model.
///
/// A screen deletes its children in the order in which it got them. Some of them delete their items only in
/// the next turn of the event loop, and the model has to be there until then.
class Owner final : public QObject
{
public:
    Owner(QObject &model, QObject &screen) : QObject(&screen), m_model(&model) {}
    ~Owner() override
    {
        if (m_model)
            m_model->deleteLater();
    }
    Q_DISABLE_COPY_MOVE(Owner)

private:
    QPointer<QObject> m_model;
};

qsizetype textBytes(const QXShareItem &item)
{
    qsizetype bytes = 0;
    for (const QVariant &shared : item.activityItems) {
        if (shared.typeId() == QMetaType::QString)
            bytes += shared.toString().size() * qsizetype(sizeof(QChar));
    }
    return bytes;
}

} // namespace

QXPresentingModel::QXPresentingModel(QObject *parent) : QAbstractListModel(parent) {}

void QXPresentingModel::belongTo(QObject *screen)
{
    setParent(nullptr);
    QQmlEngine::setObjectOwnership(this, QQmlEngine::CppOwnership);
    new Owner(*this, *screen);
}

void QXPresentingModel::presentShareItem(const std::optional<QXShareItem> &item)
{
    auto former = std::exchange(m_shareItem, item);
    Q_EMIT shareItemChanged();
    if (!former)
        return;
    // The share sheet has also kept the item as values of the script engine.
    const qsizetype bytes = textBytes(*former);
    Quorvix::FreedMemory::discard(std::move(former), bytes);
}

void QXPresentingModel::presentDecodedPayload(std::optional<QXDecodedPayload> payload)
{
    auto former = std::exchange(m_decodedPayload, std::move(payload));
    Q_EMIT decodedPayloadChanged();
    if (!former)
        return;
    qsizetype bytes = 0;
    for (const QXDecodedSection &section : std::as_const(former->sections))
        bytes += section.content.size() * qsizetype(sizeof(QChar));
    Quorvix::FreedMemory::discard(std::move(former), bytes);
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
