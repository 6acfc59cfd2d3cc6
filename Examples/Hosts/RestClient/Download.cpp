#include "Download.h"

#include <QtNetwork/QNetworkReply>

namespace {

constexpr qint64 kilobyte = 1024;

} // namespace

Download::Download(QNetworkReply *reply, std::unique_ptr<QSaveFile> file, QWidget *window)
    : QObject(reply), m_reply(*reply), m_file(std::move(file)),
      m_dialog(tr("Downloading %1").arg(reply->url().fileName()), tr("Cancel"), 0, 0, window)
{
    m_dialog.setWindowModality(Qt::WindowModal);
    m_dialog.setAutoReset(false);
    m_dialog.setMinimumDuration(0);
    m_dialog.setValue(0);
    connect(reply, &QNetworkReply::readyRead, this, &Download::write);
    connect(reply, &QNetworkReply::downloadProgress, this, &Download::showProgress);
    connect(reply, &QNetworkReply::finished, this, &Download::finish);
    connect(&m_dialog, &QProgressDialog::canceled, reply, &QNetworkReply::abort);
}

void Download::write()
{
    if (m_file->write(m_reply.readAll()) < 0)
        m_reply.abort();
}

void Download::showProgress(qint64 received, qint64 total)
{
    if (total > 0)
        m_dialog.setMaximum(static_cast<int>(total / kilobyte));
    // A modal dialog handles events here, so that the reply may finish before this function returns.
    m_dialog.setValue(static_cast<int>(received / kilobyte));
}

void Download::finish()
{
    m_dialog.hide();
    if (m_reply.error() != QNetworkReply::NoError) {
        m_file->cancelWriting();
        Q_EMIT finished(tr("Not saved: %1").arg(m_reply.errorString()));
        return;
    }
    write();
    const qint64 size = m_file->size();
    if (m_file->commit()) {
        Q_EMIT finished(tr("Saved %1 bytes").arg(size));
    } else {
        Q_EMIT finished(m_file->errorString());
    }
}
