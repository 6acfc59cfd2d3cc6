#pragma once

#include <QtCore/QPointer>
#include <QtNetwork/QNetworkAccessManager>
#include <QtNetwork/QNetworkReply>
#include <QtWidgets/QMainWindow>

class QComboBox;
class QLabel;
class QLineEdit;
class QPlainTextEdit;
class QProgressBar;
class QPushButton;
class QTableWidget;

/// The window of a small REST client. It sends one request at a time and shows the answer, saves it to a
/// file, or uploads a file.
class RestWindow final : public QMainWindow
{
    Q_OBJECT

public:
    explicit RestWindow(QWidget *parent = nullptr);

private:
    void buildControls();
    void send();
    void download();
    void upload();
    /// Makes @p reply the current one.
    void start(QNetworkReply *reply);
    void finish(QNetworkReply *reply);
    void showAnswer();
    void showUploadProgress(qint64 sent, qint64 total);
    void signIn(QNetworkReply *reply, QAuthenticator *authenticator);
    void askForTrust(QNetworkReply *reply, const QList<QSslError> &errors);
    [[nodiscard]] QNetworkRequest request() const;

    QNetworkAccessManager m_manager;
    QPointer<QNetworkReply> m_reply;
    bool m_saving = false;
    QComboBox *m_method;
    QLineEdit *m_url;
    QPlainTextEdit *m_body;
    QList<QPushButton *> m_buttons;
    QTableWidget *m_headers;
    QPlainTextEdit *m_answer;
    QLabel *m_status;
    QProgressBar *m_progress;
};
