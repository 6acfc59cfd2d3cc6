#include "RestWindow.h"

#include "Download.h"
#include "SignInDialog.h"

#include <QtCore/QFile>
#include <QtCore/QJsonDocument>
#include <QtCore/QSaveFile>
#include <QtNetwork/QAuthenticator>
#include <QtNetwork/QSslError>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QFileDialog>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QHeaderView>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QMessageBox>
#include <QtWidgets/QPlainTextEdit>
#include <QtWidgets/QProgressBar>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QSplitter>
#include <QtWidgets/QStatusBar>
#include <QtWidgets/QTableWidget>

#include <memory>

namespace {

template<typename Widget>
Widget *make(const char *name)
{
    auto *const widget = new Widget;
    widget->setObjectName(QLatin1StringView(name));
    return widget;
}

/// JSON with indentation; other text as it is.
QString readable(const QByteArray &body)
{
    const QJsonDocument json = QJsonDocument::fromJson(body);
    return QString::fromUtf8(json.isNull() ? body : json.toJson());
}

} // namespace

RestWindow::RestWindow(QWidget *parent)
    : QMainWindow(parent), m_method(make<QComboBox>("method")), m_url(make<QLineEdit>("url")),
      m_body(make<QPlainTextEdit>("body")), m_headers(make<QTableWidget>("headers")),
      m_answer(make<QPlainTextEdit>("answer")), m_status(make<QLabel>("status")),
      m_progress(make<QProgressBar>("progress"))
{
    buildControls();
    connect(&m_manager, &QNetworkAccessManager::finished, this, &RestWindow::finish);
    connect(&m_manager, &QNetworkAccessManager::authenticationRequired, this, &RestWindow::signIn);
    connect(&m_manager, &QNetworkAccessManager::sslErrors, this, &RestWindow::askForTrust);
}

void RestWindow::buildControls()
{
    setWindowTitle(tr("REST client"));
    resize(760, 560);
    m_method->addItems({QStringLiteral("GET"), QStringLiteral("POST"), QStringLiteral("PUT"),
                        QStringLiteral("PATCH"), QStringLiteral("DELETE"), QStringLiteral("HEAD")});
    m_url->setPlaceholderText(QStringLiteral("https://"));
    m_body->setPlaceholderText(tr("Body of the request"));
    m_headers->setColumnCount(2);
    m_headers->setHorizontalHeaderLabels({tr("Header"), tr("Value")});
    m_headers->horizontalHeader()->setStretchLastSection(true);
    m_headers->verticalHeader()->hide();
    m_answer->setReadOnly(true);
    m_progress->setVisible(false);

    auto *const line = new QHBoxLayout;
    line->addWidget(m_method);
    line->addWidget(m_url, 1);
    const auto addButton = [&](const char *name, const QString &text, void (RestWindow::*action)()) {
        auto *const button = make<QPushButton>(name);
        button->setText(text);
        connect(button, &QPushButton::clicked, this, action);
        line->addWidget(button);
        m_buttons.append(button);
    };
    addButton("send", tr("Send"), &RestWindow::send);
    addButton("download", tr("Download…"), &RestWindow::download);
    addButton("upload", tr("Upload…"), &RestWindow::upload);

    auto *const panes = new QSplitter(Qt::Vertical);
    for (QWidget *const pane : std::initializer_list<QWidget *>{m_body, m_headers, m_answer})
        panes->addWidget(pane);
    panes->setStretchFactor(2, 1);
    auto *const page = new QWidget;
    auto *const column = new QVBoxLayout(page);
    column->addLayout(line);
    column->addWidget(panes, 1);
    setCentralWidget(page);
    statusBar()->addWidget(m_status, 1);
    statusBar()->addPermanentWidget(m_progress);
    connect(m_url, &QLineEdit::returnPressed, this, &RestWindow::send);
}

QNetworkRequest RestWindow::request() const
{
    QNetworkRequest request(QUrl::fromUserInput(m_url->text()));
    request.setRawHeader("Accept", "application/json, */*;q=0.5");
    request.setHeader(QNetworkRequest::UserAgentHeader, QStringLiteral("RestClient/1.0"));
    return request;
}

void RestWindow::send()
{
    const QString method = m_method->currentText();
    const QByteArray body = m_body->toPlainText().toUtf8();
    QNetworkRequest request = this->request();
    if (!body.isEmpty())
        request.setHeader(QNetworkRequest::ContentTypeHeader, QStringLiteral("application/json"));
    if (method == QStringLiteral("GET"))
        start(m_manager.get(request));
    else if (method == QStringLiteral("HEAD"))
        start(m_manager.head(request));
    else if (method == QStringLiteral("POST"))
        start(m_manager.post(request, body));
    else if (method == QStringLiteral("PUT"))
        start(m_manager.put(request, body));
    else
        start(m_manager.sendCustomRequest(request, method.toLatin1(), body));
}

void RestWindow::download()
{
    auto file = std::make_unique<QSaveFile>(QFileDialog::getSaveFileName(this, tr("Download to")));
    if (file->fileName().isEmpty())
        return;
    if (!file->open(QIODevice::WriteOnly)) {
        m_status->setText(file->errorString());
        return;
    }
    QNetworkReply *const reply = m_manager.get(request());
    auto *const download = new Download(reply, std::move(file), this);
    connect(download, &Download::finished, m_status, &QLabel::setText);
    m_saving = true;
    start(reply);
}

void RestWindow::upload()
{
    auto file = std::make_unique<QFile>(QFileDialog::getOpenFileName(this, tr("Upload")));
    if (file->fileName().isEmpty())
        return;
    if (!file->open(QIODevice::ReadOnly)) {
        m_status->setText(file->errorString());
        return;
    }
    QNetworkRequest request = this->request();
    request.setHeader(QNetworkRequest::ContentTypeHeader, QStringLiteral("application/octet-stream"));
    QNetworkReply *const reply = m_manager.put(request, file.get());
    file.release()->setParent(reply);
    connect(reply, &QNetworkReply::uploadProgress, this, &RestWindow::showUploadProgress);
    m_progress->show();
    start(reply);
}

void RestWindow::start(QNetworkReply *reply)
{
    m_reply = reply;
    for (QPushButton *const button : std::as_const(m_buttons))
        button->setEnabled(false);
    m_headers->setRowCount(0);
    m_answer->clear();
    m_status->setText(tr("Waiting for %1").arg(reply->url().host()));
}

void RestWindow::finish(QNetworkReply *reply)
{
    reply->deleteLater();
    if (reply != m_reply)
        return;
    if (!m_saving)
        showAnswer();
    m_reply = nullptr;
    m_saving = false;
    m_progress->hide();
    for (QPushButton *const button : std::as_const(m_buttons))
        button->setEnabled(true);
}

void RestWindow::showAnswer()
{
    const auto fields = m_reply->rawHeaderPairs();
    m_headers->setRowCount(static_cast<int>(fields.size()));
    for (int row = 0; row < m_headers->rowCount(); ++row) {
        m_headers->setItem(row, 0, new QTableWidgetItem(QString::fromLatin1(fields[row].first)));
        m_headers->setItem(row, 1, new QTableWidgetItem(QString::fromLatin1(fields[row].second)));
    }
    m_answer->setPlainText(readable(m_reply->readAll()));
    const int status = m_reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    const QString reason = m_reply->attribute(QNetworkRequest::HttpReasonPhraseAttribute).toString();
    if (status != 0)
        m_status->setText(QStringLiteral("%1 %2, %3").arg(status).arg(reason, m_reply->url().path()));
    else
        m_status->setText(m_reply->errorString());
}

void RestWindow::showUploadProgress(qint64 sent, qint64 total)
{
    m_progress->setMaximum(static_cast<int>(total));
    m_progress->setValue(static_cast<int>(sent));
}

void RestWindow::signIn(QNetworkReply *reply, QAuthenticator *authenticator)
{
    if (reply != m_reply)
        return;
    SignInDialog dialog(reply->url().host(), authenticator->realm(), this);
    if (dialog.exec() == QDialog::Accepted) {
        authenticator->setUser(dialog.user());
        authenticator->setPassword(dialog.password());
    }
}

void RestWindow::askForTrust(QNetworkReply *reply, const QList<QSslError> &errors)
{
    QStringList reasons;
    for (const QSslError &error : errors)
        reasons.append(error.errorString());
    const auto answer = QMessageBox::warning(this, tr("Connection is not secure"),
                                             tr("%1\n\nContinue?").arg(reasons.join(u'\n')),
                                             QMessageBox::Yes | QMessageBox::No, QMessageBox::No);
    if (answer == QMessageBox::Yes)
        reply->ignoreSslErrors();
}
