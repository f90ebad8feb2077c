// When the preview renders by itself: counted suspension timers, auto-rendering and launching.
#include "preview/TWRenderControl.h"

#include <QTest>

class tst_TWRenderControl : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void requests_data()
    {
        QTest::addColumn<bool>("autoRender");
        QTest::addColumn<bool>("launching");
        QTest::addColumn<int>("renders");
        // A direct request, then one render for a burst of three timers.
        QTest::newRow("due") << true << false << 2;
        QTest::newRow("auto-rendering off") << false << false << 0;
        // A timer started while launching would render a second time after the launch.
        QTest::newRow("launching") << true << true << 0;
    }

    void requests()
    {
        QFETCH(bool, autoRender);
        QFETCH(bool, launching);
        QFETCH(int, renders);
        TWRenderControl control;
        int count = 0;
        control.render = [&count] { ++count; };
        control.isLaunching = [&launching] { return launching; };
        control.setAutoRender(autoRender);
        control.setSuspensionTime(0.05);
        control.renderIfAutorender();
        for (int change = 0; change < 3; ++change)
            control.fireRenderTimer();
        // A toggle meanwhile asks directly and is held back by the pending timers.
        const int before = count;
        control.renderIfAutorender();
        QCOMPARE(count, before);
        launching = false;
        QTRY_COMPARE(control.timerCount(), 0);
        QCOMPARE(count, renders);
    }
};

QTEST_GUILESS_MAIN(tst_TWRenderControl)
#include "tst_TWRenderControl.moc"
