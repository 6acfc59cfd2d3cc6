#pragma once

#include "Examples/StoreApi.h"

#include <QtCore/QAbstractListModel>
#include <QtQml/qqmlregistration.h>

/// The calls of the diagnostics on the profile page, with their results.
class DiagnosticModel : public QAbstractListModel
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Belongs to the store client")
    Q_PROPERTY(int running READ running NOTIFY runningChanged FINAL)

public:
    enum Role { KeyRole = Qt::UserRole, TitleRole, CallRole, ResultRole };

    explicit DiagnosticModel(StoreApi &api, QObject *parent = nullptr);

    [[nodiscard]] int rowCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex &index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

    /// The number of calls that are still running.
    [[nodiscard]] int running() const { return m_running; }

    Q_INVOKABLE void run(int row);
    Q_INVOKABLE void runAll();

Q_SIGNALS:
    void runningChanged();

private:
    struct Diagnostic
    {
        QString key;
        QString title;
        QString call;
        Quorvix::URLRequest request;
        QString result;
    };
    void add(const char *key, const char *title, Quorvix::URLRequest request);
    void setResult(int row, const QString &result);
    void setRunning(int running);

    StoreApi &m_api;
    QList<Diagnostic> m_diagnostics;
    int m_running = 0;
};
