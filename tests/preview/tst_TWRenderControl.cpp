// When the preview renders by itself: counted suspension timers, auto-rendering and launching.
#include "preview/TWRenderControl.h"

#include <QTest>

// Whether auto-rendering is on, whether the application is launching, and the renders due.
struct Case { bool autoRender; bool launching; int renders; };

class tst_TWRenderControl : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void requests_data()
    {
        QTest::addColumn<Case>("row");
        // A direct request, then one render for a burst of three timers.
        QTest::newRow("due") << Case{true, false, 2};
        QTest::newRow("auto-rendering off") << Case{false, false, 0};
        // A timer started while launching would render a second time after the launch.
        QTest::newRow("launching") << Case{true, true, 0};
    }

    void requests()
    {
        QFETCH(Case, row);
        TWRenderControl control;
        int count = 0;
        control.render = [&count] { ++count; };
        control.isLaunching = [&row] { return row.launching; };
        control.setAutoRender(row.autoRender);
        control.setSuspensionTime(0.05);
        control.renderIfAutorender();
        for (int change = 0; change < 3; ++change)
            control.fireRenderTimer();
        // A toggle meanwhile asks directly and is held back by the pending timers (else one
        // render more).
        control.renderIfAutorender();
        row.launching = false;
        QTRY_COMPARE(control.timerCount(), 0);
        QCOMPARE(count, row.renders);
    }
};

QTEST_GUILESS_MAIN(tst_TWRenderControl)
#include "tst_TWRenderControl.moc"
