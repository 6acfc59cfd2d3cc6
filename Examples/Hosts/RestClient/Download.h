#pragma once

#include <QtCore/QSaveFile>
#include <QtWidgets/QProgressDialog>

#include <memory>

class QNetworkReply;

/// Writes the body of a reply to a file while it arrives. A dialog shows the progress and can cancel. The
/// object belongs to the reply and ends with it.
class Download final : public QObject
{
    Q_OBJECT

public:
    /// @p file is open.
    Download(QNetworkReply *reply, std::unique_ptr<QSaveFile> file, QWidget *window);

Q_SIGNALS:
    /// The outcome, for people.
    void finished(const QString &message);

private:
    void write();
    void showProgress(qint64 received, qint64 total);
    void finish();

    QNetworkReply &m_reply;
    const std::unique_ptr<QSaveFile> m_file;
    QProgressDialog m_dialog;
};
