// A program with a window of Qt Widgets: a list of a hundred rows. Ends when it has painted and has come to
// rest; with the argument "start", as soon as it has painted.
#include "Footprint.h"

#include <QtCore/QTimer>
#include <QtNetwork/QNetworkAccessManager>
#include <QtWidgets/QApplication>
#include <QtWidgets/QListWidget>

#ifdef WITH_QUORVIX
#include <Quorvix/QXNetworkAccessManager.h>
#include <Quorvix/QuorvixClient.h>
using Manager = QXNetworkAccessManager;
#else
using Manager = QNetworkAccessManager;
#endif

/// Calls back when it has been painted for the first time.
class List final : public QListWidget
{
public:
    explicit List(Footprint &footprint) : m_footprint(footprint) {}

protected:
    void paintEvent(QPaintEvent *event) override
    {
        QListWidget::paintEvent(event);
        if (m_isPainted)
            return;
        m_isPainted = true;
        // After all of the window has been painted. The inspector waits for 400 ms before it makes a window.
        QTimer::singleShot(0, this, [this] {
            m_footprint.ready();
            const bool isStart = QCoreApplication::arguments().value(1) == QStringLiteral("start");
            QTimer::singleShot(isStart ? 0 : 1200, this, [this] {
                m_footprint.print();
                QCoreApplication::quit();
            });
        });
    }

private:
    Footprint &m_footprint;
    bool m_isPainted = false;
};

int main(int argc, char *argv[])
{
    Footprint footprint;
    QApplication application(argc, argv);
    List list(footprint);
    for (int row = 0; row < 100; ++row)
        list.addItem(QStringLiteral("Row %1").arg(row));
    list.resize(390, 844);
    const Manager manager;
    list.show();
#ifdef WITH_QUORVIX
    QuorvixClient::shared().start();
#endif
    return application.exec();
}
