// Windows are ordered by their last activation, a closed one leaves the order; hidden and
// minimised windows are not visible. (Choosing the document window by this order is tested
// with the editor text view.)
#include "platform/TWWindowOrder.h"

#include <QApplication>
#include <QTest>
#include <QWidget>

class tst_TWWindowOrder : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void lastActivatedFirstClosedGone()
    {
        TWWindowOrder *order = TWWindowOrder::shared();
        QWidget first, second;
        {
            QWidget passing;
            for (QWidget *window : {&second, &first, &passing}) {
                window->show();
                QVERIFY(QTest::qWaitForWindowExposed(window));
                QApplication::setActiveWindow(window);
                QTRY_COMPARE(order->orderedWindows().first(), window);
            }
            QCOMPARE(order->orderedWindows().mid(0, 3), (QList<QWidget *>{&passing, &first, &second}));
        }
        QCOMPARE(order->orderedWindows().mid(0, 2), (QList<QWidget *>{&first, &second}));
    }

    void visibleMeansShownAndNotMinimised()
    {
        QWidget window;
        QVERIFY(!TWWindowOrder::isWindowVisible(&window));
        window.show();
        QVERIFY(TWWindowOrder::isWindowVisible(&window));
        window.showMinimized();
        QVERIFY(!TWWindowOrder::isWindowVisible(&window));
    }
};

QTEST_MAIN(tst_TWWindowOrder)
#include "tst_TWWindowOrder.moc"
