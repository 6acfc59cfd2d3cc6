#pragma once

#include "Quorvix/QXDecodedPayload.h"
#include "Quorvix/QXShareItem.h"

#include "Controls/QXBackgroundTask.h"

#include <QtCore/QAbstractListModel>
#include <QtQml/qqmlregistration.h>

#include <optional>

/// The list model of a screen, together with what it presents over that screen: the share sheet, a decoded
/// payload, an alert, the progress of a task. Main thread only.
///
/// QXPresentations shows these. A model can declare the same functions and signals as further properties
/// with other names.
class QXPresentingModel : public QAbstractListModel
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("the base of models")
    /// The QXShareItem of the share sheet, or undefined if no sheet is shown; assigning undefined clears it.
    Q_PROPERTY(QVariant shareItem READ shareItemValue WRITE setShareItemValue NOTIFY shareItemChanged)
    /// The message of the alert; empty if there is none.
    Q_PROPERTY(QString alertMessage READ alertMessageText NOTIFY alertMessageChanged)
    Q_PROPERTY(bool showAlert READ showAlert WRITE setShowAlert NOTIFY showAlertChanged)
    /// The QXDecodedPayload that is shown, or undefined; assigning undefined clears it.
    Q_PROPERTY(QVariant decodedPayload READ decodedPayloadValue WRITE setDecodedPayloadValue NOTIFY
                   decodedPayloadChanged)
    /// Performs what takes long.
    Q_PROPERTY(QXBackgroundTask *task READ task CONSTANT)

public:
    /// Makes a screen the owner of the model, which is deleted after the screen and all items in it. The
    /// screen must be complete.
    Q_INVOKABLE void belongTo(QObject *screen);

    [[nodiscard]] const std::optional<QXShareItem> &shareItem() const noexcept { return m_shareItem; }
    [[nodiscard]] const std::optional<QString> &alertMessage() const noexcept { return m_alertMessage; }
    [[nodiscard]] bool showAlert() const noexcept { return m_showAlert; }
    void setShowAlert(bool show);
    [[nodiscard]] const std::optional<QXDecodedPayload> &decodedPayload() const noexcept
    {
        return m_decodedPayload;
    }
    [[nodiscard]] QXBackgroundTask *task() const noexcept { return m_task; }

Q_SIGNALS:
    void shareItemChanged();
    void alertMessageChanged();
    void showAlertChanged();
    void decodedPayloadChanged();

protected:
    explicit QXPresentingModel(QObject *parent);

    void presentShareItem(const std::optional<QXShareItem> &item);
    void presentDecodedPayload(std::optional<QXDecodedPayload> payload);
    void presentAlert(const QString &message);

    [[nodiscard]] QVariant shareItemValue() const;
    void setShareItemValue(const QVariant &value);
    [[nodiscard]] QString alertMessageText() const { return m_alertMessage.value_or(QString()); }
    [[nodiscard]] QVariant decodedPayloadValue() const;
    void setDecodedPayloadValue(const QVariant &value);

private:
    std::optional<QXShareItem> m_shareItem;
    std::optional<QString> m_alertMessage;
    bool m_showAlert = false;
    std::optional<QXDecodedPayload> m_decodedPayload;
    /// Owned by this object as its QObject parent.
    QXBackgroundTask *m_task = new QXBackgroundTask(this);
};
