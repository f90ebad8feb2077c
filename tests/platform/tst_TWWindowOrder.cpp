// Windows are ordered by their last activation; hidden and minimised ones are not visible.
#include "platform/TWWindowOrder.h"

#include <QApplication>
#include <QTest>
#include <QWidget>

class tst_TWWindowOrder : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void lastActivatedComesFirst()
    {
        TWWindowOrder *order = TWWindowOrder::shared();
        QWidget first, second, third;
        for (QWidget *window : {&first, &second, &third}) {
            window->resize(100, 100);
            window->show();
            QVERIFY(QTest::qWaitForWindowExposed(window));
        }
        for (QWidget *window : {&third, &first, &second}) {
            QApplication::setActiveWindow(window);
            QTRY_COMPARE(QApplication::activeWindow(), window);
        }
        const QList<QWidget *> windows = order->orderedWindows();
        QCOMPARE(windows.mid(0, 3), (QList<QWidget *>{&second, &first, &third}));

        // A window that goes away leaves the order.
        {
            QWidget passing;
            passing.show();
            QVERIFY(QTest::qWaitForWindowExposed(&passing));
            QApplication::setActiveWindow(&passing);
            QTRY_COMPARE(order->orderedWindows().first(), &passing);
        }
        QCOMPARE(order->orderedWindows().first(), &second);
    }

    void visibilityMeansShownAndNotMinimised()
    {
        QWidget window;
        QVERIFY(!TWWindowOrder::isWindowVisible(&window));
        window.show();
        QVERIFY(TWWindowOrder::isWindowVisible(&window));
        window.showMinimized();
        QVERIFY(!TWWindowOrder::isWindowVisible(&window));
        QVERIFY(!TWWindowOrder::isWindowVisible(nullptr));
    }
};

QTEST_MAIN(tst_TWWindowOrder)
#include "tst_TWWindowOrder.moc"
