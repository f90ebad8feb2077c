// When the preview renders by itself: counted suspension timers, auto-rendering and launching.
#include "preview/TWRenderControl.h"

#include <QElapsedTimer>
#include <QTest>

class tst_TWRenderControl : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void burstRendersOnceAfterTheLastChange()
    {
        TWRenderControl control;
        control.setSuspensionTime(1.0);
        int renders = 0;
        QElapsedTimer sinceLast;
        qint64 renderedAfter = -1;
        control.render = [&] {
            ++renders;
            renderedAfter = sinceLast.elapsed();
        };
        control.isLaunching = [] { return false; };
        for (int change = 0; change < 3; ++change) {
            control.fireRenderTimer();
            sinceLast.start();
            if (change < 2)
                QTest::qWait(100);
        }
        QCOMPARE(control.timerCount(), 3);
        // A toggle meanwhile asks directly and is held back by the pending timers.
        control.renderIfAutorender();
        QCOMPARE(renders, 0);
        QTRY_COMPARE_WITH_TIMEOUT(renders, 1, 3000);
        QCOMPARE(control.timerCount(), 0);
        QVERIFY2(renderedAfter >= 900 && renderedAfter < 1600, qPrintable(QString::number(renderedAfter)));
        QTest::qWait(300);
        QCOMPARE(renders, 1);
    }

    void directRequests_data()
    {
        QTest::addColumn<bool>("autoRender");
        QTest::addColumn<bool>("launching");
        QTest::addColumn<int>("renders");
        QTest::newRow("due") << true << false << 1;
        QTest::newRow("auto-rendering off") << false << false << 0;
        QTest::newRow("launching") << true << true << 0;
    }

    void directRequests()
    {
        QFETCH(bool, autoRender);
        QFETCH(bool, launching);
        QFETCH(int, renders);
        TWRenderControl control;
        int count = 0;
        control.render = [&count] { ++count; };
        control.isLaunching = [launching] { return launching; };
        control.setAutoRender(autoRender);
        control.renderIfAutorender();
        QCOMPARE(count, renders);
        // The timers' own firing follows the same rule.
        control.setSuspensionTime(0.01);
        control.fireRenderTimer();
        QTRY_COMPARE(control.timerCount(), 0);
        QCOMPARE(count, 2 * renders);
    }
};

QTEST_GUILESS_MAIN(tst_TWRenderControl)
#include "tst_TWRenderControl.moc"
