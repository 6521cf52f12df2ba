// The whole app, end to end, against the real local service on 127.0.0.1:
// launch, sign in through the sheet, the frame, the palette, pages and
// their links, Back and Forward, the kest chat (a message, its thread, a
// teammate's answer and its run), the bell, dark mode, switching workspace,
// signing out. Each state is saved as a PNG in the build tree to look at;
// nothing is compared pixel by pixel. Any QML warning fails the test.

#include "DevServiceProcess.h"

#include "pages/TaskListPage.h"
#include "shell/AppModel.h"
#include "shell/Appearance.h"
#include "shell/BellModel.h"
#include "shell/DesktopExtras.h"
#include "shell/KestroApp.h"
#include "shell/LauncherBadge.h"
#include "shell/Router.h"
#include "shell/WebAuthSession.h"
#include "shell/WebViews.h"

#include "calls/tasks.h"
#include "service/Auth.h"
#include "service/BlockingWait.h"
#include "service/Client.h"
#include "service/ServiceOrigin.h"

#include <QDBusConnection>
#include <QDir>
#include <QFile>
#include <QGuiApplication>
#include <QJsonObject>
#include <QProcess>
#include <QQmlContext>
#include <QQmlExpression>
#include <QQuickItem>
#include <QQuickWindow>
#include <QSettings>
#include <QSignalSpy>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

#include <tuple>

using namespace Kestro;
using namespace Qt::Literals::StringLiterals;

namespace {

QStringList qmlWarnings;
QtMessageHandler previousHandler = nullptr;

void watchWarnings(QtMsgType type, const QMessageLogContext& context, const QString& message)
{
    if ((type == QtWarningMsg || type == QtCriticalMsg) && message.contains(u"qrc:/Kestro"_s))
        qmlWarnings.append(message);
    previousHandler(type, context, message);
}

} // namespace

class TestEndToEnd : public QObject {
    Q_OBJECT

    KestroTest::DevServiceProcess m_service{QStringLiteral(KESTRO_DEVSERVICE)};
    std::unique_ptr<KestroApp> m_app;
    QTemporaryDir m_tools; // the only programs the app finds: no browser
    int m_shot = 0;
    int m_asked = 0;

    QQuickWindow* window() const { return m_app->window(); }
    // Whether the keyboard is in the named control (or inside it).
    bool typingGoesTo(const QString& name) const
    {
        QQuickItem* focused = window()->activeFocusItem();
        QQuickItem* control = item(name);
        return focused && control && (focused == control || control->isAncestorOf(focused));
    }

    QObject* find(const QString& name) const
    {
        return window() ? window()->findChild<QObject*>(name) : nullptr;
    }
    QQuickItem* item(const QString& name) const { return qobject_cast<QQuickItem*>(find(name)); }
    bool showing(const QString& name) const
    {
        QQuickItem* it = item(name);
        return it && it->isVisible();
    }
    QString text(const QString& name) const
    {
        QObject* it = find(name);
        return it ? it->property("text").toString() : QString();
    }
    void click(const QString& name)
    {
        QQuickItem* it = item(name);
        QVERIFY2(it, qPrintable(name));
        const QPointF centre = it->mapToScene(QPointF(it->width() / 2, it->height() / 2));
        QTest::mouseClick(window(), Qt::LeftButton, {}, centre.toPoint());
    }
    void shoot(const QString& name)
    {
        // Let the scene settle (animations, web content) before grabbing.
        QTest::qWait(400);
        const QDir dir(QStringLiteral(KESTRO_SCREENSHOT_DIR));
        QDir().mkpath(dir.path());
        const QString file =
            dir.filePath(u"e2e-%1-%2.png"_s.arg(++m_shot, 2, 10, QLatin1Char('0')).arg(name));
        QVERIFY2(window()->grabWindow().save(file), qPrintable(file));
    }
    QString route() const { return m_app->router().route().text(); }
    // Runs `script` in the service page on show, which ends by putting its
    // answer in `done(...)`; hands back that answer. A view that is still
    // on its first, empty document is asked again.
    QString askPage(const QString& script)
    {
        QString answer = u"(no web page)"_s;
        QDeadlineTimer deadline(20'000);
        do {
            QQuickItem* web = webEngineView();
            if (!web) {
                QTest::qWait(100);
                continue;
            }
            const QString mark = u"answer%1:"_s.arg(++m_asked);
            const QString wrapped = u"(function(){function done(v){document.title='%1'+v}"
                                    "if(location.protocol!=='http:'||document.readyState!=='complete'){done('"
                                    "(not ready)');return}"
                                    "try{%2}catch(e){done('threw '+e)}})()"_s.arg(mark, script);
            QMetaObject::invokeMethod(web, "runJavaScript", Q_ARG(QString, wrapped));
            if (!QTest::qWaitFor([web, mark] { return web->property("title").toString().startsWith(mark); },
                                 5000))
                answer = u"(no answer)"_s;
            else
                answer = web->property("title").toString().mid(mark.size());
            if (answer != u"(not ready)"_s)
                return answer;
            QTest::qWait(100);
        } while (!deadline.hasExpired());
        return answer;
    }
    // What this session's pages stored: "<local storage item>:<databases>".
    QString storedByPages()
    {
        return askPage(u"indexedDB.databases().then(function(d){done(localStorage.getItem('kestro-e2e')+':'+"
                       "d.length)},function(e){done('refused '+e)})"_s);
    }
    // The engine's view inside the web page on show.
    QQuickItem* webEngineView() const
    {
        QQuickItem* page = item(u"webPage"_s);
        if (!page)
            return nullptr;
        for (QQuickItem* child : page->childItems())
            if (QByteArray(child->metaObject()->className()).contains("WebEngineView"))
                return child;
        return nullptr;
    }
    // Keys and clicks through the X server, as a person's arrive: layout,
    // focus and the platform's key mapping all take part, which events made
    // inside Qt skip. The window takes the X input focus first (there is no
    // window manager under Xvfb).
    void xdo(const QStringList& args)
    {
        QCOMPARE(QProcess::execute(u"xdotool"_s,
                                   {u"windowfocus"_s, u"--sync"_s, QString::number(window()->winId())}),
                 0);
        QCOMPARE(QProcess::execute(u"xdotool"_s, args), 0);
    }
    void xclick(const QString& name)
    {
        QQuickItem* it = item(name);
        QVERIFY2(it, qPrintable(name));
        xclick(it);
    }
    void xclick(QQuickItem* it)
    {
        const QPoint at =
            window()->mapToGlobal(it->mapToScene(QPointF(it->width() / 2, it->height() / 2)).toPoint());
        xdo({u"mousemove"_s, u"--sync"_s, QString::number(at.x()), QString::number(at.y()), u"click"_s,
             u"1"_s});
    }

    // Every item drawn inside `in` (a view's delegates are not its object
    // children).
    static QList<QQuickItem*> drawnInside(QQuickItem* in)
    {
        QList<QQuickItem*> items;
        for (QQuickItem* child : in->childItems())
            items << child << drawnInside(child);
        return items;
    }
    // A shown item called `name` drawn inside `in` (a shared control moves
    // from item to item, so its object parent says nothing).
    QQuickItem* shownInside(QQuickItem* in, const QString& name) const
    {
        for (QQuickItem* child : window()->findChildren<QQuickItem*>(name))
            for (QQuickItem* up = child; child->isVisible() && up; up = up->parentItem())
                if (up == in)
                    return child;
        return nullptr;
    }

private slots:
    void initTestCase()
    {
        previousHandler = qInstallMessageHandler(watchWarnings);
        // A new user: nothing remembered from an earlier run.
        QSettings().clear();
        // No browser on this desktop, whatever the machine has installed
        // (xdg-open comes with many packages): "Log in" falls back to the
        // sheet, which the test drives. Only the X tools stay in reach.
        for (const QString& tool : {u"xdotool"_s, u"setxkbmap"_s, u"xkbcomp"_s}) {
            const QString path = QStandardPaths::findExecutable(tool);
            QVERIFY2(!path.isEmpty(), qPrintable(tool + u" is needed to drive the app"_s));
            QVERIFY(QFile::link(path, m_tools.filePath(tool)));
        }
        qputenv("PATH", QFile::encodeName(m_tools.path()));
        qunsetenv("BROWSER");
        qunsetenv("DEFAULT_BROWSER");
        // Teammates work twenty times faster than in the demo, whose
        // workspace starts with its setup, as a new one does.
        m_service.start({u"--auto-approve"_s, u"--time-scale"_s, u"20"_s, u"--setup"_s});
        ServiceOrigin::setOverride(m_service.origin());
        m_app = std::make_unique<KestroApp>();
        QVERIFY(m_app->show());
        QVERIFY(QTest::qWaitForWindowExposed(window()));
        window()->requestActivate();
        QVERIFY(QTest::qWaitForWindowActive(window()));
    }

    void cleanupTestCase()
    {
        m_app.reset();
        m_service.stop();
        qInstallMessageHandler(previousHandler);
    }

    void launchesSignedOut()
    {
        QTRY_COMPARE_WITH_TIMEOUT(m_app->app().phase(), AppModel::Phase::SignedOut, 10000);
        QTRY_VERIFY(showing(u"signInScreen"_s));
        shoot(u"sign-in"_s);
        // The web engine is a library of its own that nothing has asked for
        // yet: the window starts without mapping it.
        QFile maps(u"/proc/self/maps"_s);
        QVERIFY(maps.open(QIODevice::ReadOnly));
        const QByteArray mapped = maps.readAll();
        QVERIFY(mapped.contains("libQt6Quick.so"));
        QVERIFY2(!mapped.contains("libQt6WebEngineCore.so"), "the web engine was loaded with the window");
        // The one shared hover tip reads names and titles as plain text.
        QObject* scope = find(u"frameLoader"_s);
        QVERIFY(scope);
        QQmlExpression format(qmlContext(scope), scope, u"ToolTip.toolTip.contentItem.textFormat"_s);
        QCOMPARE(format.evaluate().toInt(), 0); // Text.PlainText
    }

    void signsInThroughTheSheet()
    {
        click(u"signInButton"_s);
        // The new workspace's setup comes first, in place of the frame.
        QTRY_VERIFY_WITH_TIMEOUT(showing(u"setupScreen"_s), 30000);
        QCOMPARE(m_app->app().phase(), AppModel::Phase::Launching);
        QCOMPARE(m_app->app().setupPath(), u"/setup/business"_s);
        QCOMPARE(askPage(u"done(document.querySelector('h1').textContent)"_s),
                 u"Tell Kestro about your business"_s);
        shoot(u"setup"_s);
        QCOMPARE(askPage(u"document.getElementById('continue').click();done('')"_s), QString());
        QTRY_COMPARE_WITH_TIMEOUT(m_app->app().setupPath(), u"/setup/launch"_s, 10000);
        QTRY_COMPARE_WITH_TIMEOUT(askPage(u"done(document.querySelector('h1').textContent)"_s),
                                  u"Meet your kest"_s, 10000);
        // "Finish setup" pressed as a person presses it, through the X server.
        const QStringList at = askPage(u"var r=document.getElementById('finish').getBoundingClientRect();"
                                       "done(Math.round(r.x+r.width/2)+','+Math.round(r.y+r.height/2))"_s)
                                   .split(u',');
        QCOMPARE(at.size(), 2);
        QQuickItem* web = webEngineView();
        QVERIFY(web);
        const QPoint finish =
            window()->mapToGlobal(web->mapToScene(QPointF(at[0].toDouble(), at[1].toDouble())).toPoint());
        xdo({u"mousemove"_s, u"--sync"_s, QString::number(finish.x()), QString::number(finish.y()),
             u"click"_s, u"1"_s});
        QTRY_COMPARE_WITH_TIMEOUT(m_app->app().phase(), AppModel::Phase::SignedIn, 30000);
        QVERIFY(m_app->app().setupPath().isEmpty());
        QVERIFY(m_app->app().signInError().isEmpty());
        QVERIFY(Client::shared().auth().tokens());
        QTRY_COMPARE(text(u"workspaceName"_s), u"Northwind Studio"_s);
        QCOMPARE(route(), u"/activity"_s);
        // Home is the app's own page: the demo workspace's day, read from
        // the service.
        QTRY_VERIFY_WITH_TIMEOUT(showing(u"activityScroll"_s), 20000);
        QTRY_COMPARE(text(u"pageTitle"_s), u"Home"_s);
        QObject* home = find(u"activityPage"_s);
        QVERIFY(home);
        shoot(u"frame"_s);

        // Needs you is the same page with another query: not built again.
        QTest::keyClick(window(), Qt::Key_2, Qt::ControlModifier | Qt::ShiftModifier);
        QTRY_COMPARE(route(), u"/activity?view=you"_s);
        QTRY_COMPARE(text(u"pageTitle"_s), u"Needs you"_s);
        QCOMPARE(find(u"activityPage"_s), home);
        shoot(u"needs-you"_s);
        QTest::keyClick(window(), Qt::Key_BracketLeft, Qt::ControlModifier);
        QTRY_COMPARE(route(), u"/activity"_s);
        QCOMPARE(find(u"activityPage"_s), home);
    }

    void opensAPageFromThePalette()
    {
        // The global key, grabbed on the X server: it reaches Kestro
        // without its window having the keyboard.
        QCOMPARE(m_app->desktop().hotKey(), u"Ctrl+Alt+K"_s);
        QCOMPARE(QProcess::execute(u"xdotool"_s, {u"key"_s, u"ctrl+alt+k"_s}), 0);
        QTRY_VERIFY(find(u"palette"_s) && find(u"palette"_s)->property("opened").toBool());
        xdo({u"key"_s, u"Escape"_s});
        QTRY_VERIFY(!find(u"palette"_s)->property("visible").toBool());

        xdo({u"key"_s, u"ctrl+k"_s});
        QTRY_VERIFY(find(u"palette"_s) && find(u"palette"_s)->property("opened").toBool());
        xdo({u"type"_s, u"--delay"_s, u"20"_s, u"analytics"_s});
        QTRY_VERIFY(find(u"paletteResults"_s)->property("count").toInt() > 0);
        shoot(u"palette"_s);
        xdo({u"key"_s, u"Return"_s});
        QTRY_COMPARE(route(), u"/analytics"_s);
        QTRY_VERIFY(!find(u"palette"_s)->property("visible").toBool());
        QTRY_COMPARE_WITH_TIMEOUT(text(u"pageTitle"_s), u"Analytics"_s, 20000);
        // The native page: the demo site's figures, and Google's row with
        // the icon the service serves for it.
        QTRY_VERIFY_WITH_TIMEOUT(showing(u"analyticsScroll"_s), 10000);
        QQuickItem* sources = item(u"sources"_s);
        QVERIFY(sources);
        auto googleIcon = [&]() -> QQuickItem* {
            for (QQuickItem* it : drawnInside(sources))
                if (it->property("source").toUrl() == QUrl(u"image://site/google.com"_s))
                    return it;
            return nullptr;
        };
        QTRY_VERIFY(googleIcon());
        QTRY_COMPARE_WITH_TIMEOUT(googleIcon()->property("status").toInt(), 1 /* Image.Ready */, 10000);
        // The range through the X server: the page moves to 30 days.
        QQuickItem* month = nullptr;
        for (QQuickItem* it : drawnInside(item(u"analyticsPage"_s)))
            if (it->objectName() == u"range-30d"_s && it->isVisible())
                month = it;
        QVERIFY(month);
        xclick(month);
        QTRY_COMPARE(route(), u"/analytics?range=30d&site=s1"_s);
        QTRY_VERIFY_WITH_TIMEOUT(showing(u"analyticsScroll"_s), 10000);
        shoot(u"analytics"_s);
    }

    void followsALinkInsideAServicePage()
    {
        // A click on an in-site link is routed by the app, not the view.
        m_app->router().open(u"/tests"_s);
        QTRY_COMPARE_WITH_TIMEOUT(text(u"pageTitle"_s), u"Tests"_s, 20000);
        // The page's own title comes over the bridge once it has loaded.
        QTRY_COMPARE_WITH_TIMEOUT(m_app->webViews().title(), u"Tests"_s, 20000);
        QQuickItem* web = webEngineView();
        QVERIFY(web);
        QVERIFY(QMetaObject::invokeMethod(
            web, "runJavaScript",
            Q_ARG(QString, u"document.querySelector('a[href=\"/crm/customers\"]').click()"_s)));
        QTRY_COMPARE_WITH_TIMEOUT(route(), u"/crm/customers"_s, 10000);
        QTRY_COMPARE_WITH_TIMEOUT(text(u"pageTitle"_s), u"Customers"_s, 20000);
        // The page's own title came over the bridge, from the view's address.
        QTRY_COMPARE_WITH_TIMEOUT(m_app->webViews().title(), u"Customers"_s, 10000);
    }

    void aPageCannotSteerTheAppThroughKestroAddresses()
    {
        // An image, a frame or a fetch of a "kestro:" address is no deep
        // link: only the sign-in flow's own navigation reaches the app.
        QQuickItem* web = webEngineView();
        QVERIFY(web);
        QVERIFY(QMetaObject::invokeMethod(
            web, "runJavaScript",
            Q_ARG(QString, u"const i = document.createElement('img'); i.src = 'kestro://settings';"
                           "document.body.appendChild(i);"
                           "const f = document.createElement('iframe'); f.src = 'kestro://settings/profile';"
                           "document.body.appendChild(f);"
                           "fetch('kestro://settings/appearance').catch(() => {});"_s)));
        QTest::qWait(1500);
        QCOMPARE(route(), u"/crm/customers"_s);
        // The control: the same page does move the app, its own way, through
        // the bridge.
        QVERIFY(QMetaObject::invokeMethod(web, "runJavaScript",
                                          Q_ARG(QString, u"history.pushState({}, '', '/tasks')"_s)));
        QTRY_COMPARE_WITH_TIMEOUT(route(), u"/tasks"_s, 10000);
        m_app->router().goBack();
        QTRY_COMPARE(route(), u"/crm/customers"_s);
    }

    void goesBackAndForward()
    {
        QTest::keyClick(window(), Qt::Key_BracketLeft, Qt::ControlModifier);
        QTRY_COMPARE(route(), u"/tests"_s);
        xclick(u"backButton"_s);
        QTRY_COMPARE(route(), u"/analytics?range=30d&site=s1"_s);
        QTest::keyClick(window(), Qt::Key_BracketRight, Qt::ControlModifier);
        QTRY_COMPARE(route(), u"/tests"_s);
        click(u"forwardButton"_s);
        QTRY_COMPARE(route(), u"/crm/customers"_s);
        click(u"forwardButton"_s); // to the page the service page opened
        QTRY_COMPARE(route(), u"/tasks"_s);
        QVERIFY(!m_app->router().canGoForward());
    }

    void createsATaskFromTheList()
    {
        // The native list, its New task button and the dialog, all through
        // the X server.
        QTRY_VERIFY_WITH_TIMEOUT(showing(u"taskList"_s), 10000);
        shoot(u"task-list"_s);
        xclick(u"newTask"_s);
        QTRY_VERIFY(find(u"newTaskDialog"_s)->property("opened").toBool());
        QTRY_VERIFY(typingGoesTo(u"newTaskTitle"_s));
        xdo({u"type"_s, u"--delay"_s, u"20"_s, u"Write the spring newsletter"_s});
        shoot(u"new-task"_s);
        xdo({u"key"_s, u"Return"_s});
        QTRY_VERIFY_WITH_TIMEOUT(route().startsWith(u"/tasks/NOR-"_s), 10000);
        QVERIFY(!find(u"newTaskDialog"_s) || !find(u"newTaskDialog"_s)->property("opened").toBool());
    }

    // A drawn item by name inside `in` (a view's delegates are found only
    // through the items they are drawn in).
    static QQuickItem* drawnNamed(QQuickItem* in, const QString& name)
    {
        for (QQuickItem* it : drawnInside(in))
            if (it->objectName() == name && it->isVisible())
                return it;
        return nullptr;
    }

    void dragsACardOnTheBoard()
    {
        m_app->router().open(u"/tasks?layout=board"_s);
        QTRY_VERIFY_WITH_TIMEOUT(showing(u"taskBoard"_s), 10000);
        QQuickItem* board = item(u"taskBoard"_s);
        QTRY_VERIFY(drawnNamed(board, u"taskCard-NOR-3"_s) && drawnNamed(board, u"boardColumn-3"_s));
        shoot(u"board"_s);
        // Pressed, carried in steps (as a hand does) and let go over the
        // backlog: the card lands there, and stays once the service agreed.
        QQuickItem* card = drawnNamed(board, u"taskCard-NOR-3"_s);
        QQuickItem* backlog = drawnNamed(board, u"boardColumn-3"_s);
        const QPoint from = window()->mapToGlobal(card->mapToScene(QPointF(card->width() / 2, 20)).toPoint());
        const QPoint to = window()->mapToGlobal(
            backlog->mapToScene(
                       QPointF(60, 300)) /* its left edge: the rest may lie past the window */.toPoint());
        xdo({u"mousemove"_s, u"--sync"_s, QString::number(from.x()), QString::number(from.y()),
             u"mousedown"_s, u"1"_s});
        for (int step = 1; step <= 10; ++step) {
            const QPoint at = from + (to - from) * step / 10;
            xdo({u"mousemove"_s, u"--sync"_s, QString::number(at.x()), QString::number(at.y())});
        }
        shoot(u"board-drag"_s);
        auto* tasks = window()->findChild<TaskListPage*>();
        QVERIFY(tasks);
        xdo({u"mouseup"_s, u"1"_s});
        QTRY_VERIFY(drawnNamed(backlog, u"taskCard-NOR-3"_s));
        // The service has it there too, and the board still shows it so.
        const auto statusOnTheService = [] {
            Arg filters{JSONValue::fromQJsonValue(QJsonObject{{u"sub"_s, true}})};
            const auto answer = blockingWait(Calls::tasks::tasks(std::move(filters)));
            for (const auto& task : answer.tasks)
                if (task.key == u"NOR-3"_s)
                    return task.status;
            return QString();
        };
        QTRY_COMPARE_WITH_TIMEOUT(statusOnTheService(), u"backlog"_s, 10000);
        QVERIFY(drawnNamed(backlog, u"taskCard-NOR-3"_s));
        QVERIFY(tasks->moveError().isEmpty());
        QCOMPARE(route(), u"/tasks?layout=board"_s); // a drag opens nothing
        // Back to the list, which "/tasks" opens with from now on.
        xclick(u"showList"_s);
        QTRY_COMPARE(route(), u"/tasks"_s);
    }

    void reachesThePlacesFromAnyKeyboard()
    {
        // Ctrl+Shift and the top-row digit, on the physical key: German
        // Shift+3 types "§", AZERTY's unshifted 4 is an apostrophe.
        const struct {
            const char* layout;
            const char* key;
            const char* route;
        } presses[] = {{"de", "ctrl+shift+3", "/tasks"},
                       {"fr", "ctrl+shift+apostrophe", "/kest"},
                       {"us", "ctrl+shift+1", "/activity"}};
        for (const auto& press : presses) {
            QCOMPARE(QProcess::execute(u"setxkbmap"_s, {u"-layout"_s, QString::fromLatin1(press.layout)}), 0);
            xdo({u"key"_s, QString::fromLatin1(press.key)});
            QTRY_COMPARE(route(), QString::fromLatin1(press.route));
        }

        // Return and the keypad's Enter press the focused place, as Space
        // does, and the focus ring stays.
        auto place = [&](const QString& label) -> QQuickItem* {
            for (QQuickItem* it : drawnInside(window()->contentItem()))
                if (it->property("label").toString() == label &&
                    QByteArray(it->metaObject()->className()).contains("SidebarItem"))
                    return it;
            return nullptr;
        };
        for (const auto& [label, key, path] :
             {std::tuple{u"Tasks"_s, u"Return"_s, u"/tasks"_s},
              std::tuple{u"Needs you"_s, u"KP_Enter"_s, u"/activity?view=you"_s}}) {
            QQuickItem* it = place(label);
            QVERIFY2(it, qPrintable(label));
            it->forceActiveFocus(Qt::TabFocusReason);
            xdo({u"key"_s, key});
            QTRY_COMPARE(route(), path);
            QVERIFY(it->property("visualFocus").toBool());
        }
    }

    void talksInTheKestChat()
    {
        // The chord on the physical "4" key, as a keyboard sends it through
        // X: Shift makes it "$" on this layout.
        xdo({u"key"_s, u"ctrl+shift+4"_s});
        QTRY_COMPARE(route(), u"/kest"_s);
        QTRY_VERIFY_WITH_TIMEOUT(showing(u"roomTimeline"_s), 20000);
        QTRY_COMPARE(text(u"pageTitle"_s), u"Kest chat"_s);
        QObject* room = find(u"kestRoom"_s);
        QVERIFY(room);
        QObject* composer = room->property("composer").value<QObject*>();
        QVERIFY(composer);
        shoot(u"kest-room"_s);

        // Send refuses an empty message and says why.
        QVERIFY(QMetaObject::invokeMethod(composer, "send"));
        QCOMPARE(composer->property("error").toString(), u"Tell us what you need first, then press Send."_s);

        // The room gives its composer the keyboard on arrival: typing goes there.
        QTRY_VERIFY(typingGoesTo(u"kestPrompt"_s));
        xdo({u"type"_s, u"--delay"_s, u"5"_s, u"@all which launch should we do first?"_s});
        QTRY_COMPARE(composer->property("hint").toString(), u"Goes to everyone"_s);
        xdo({u"key"_s, u"Return"_s});
        QTRY_VERIFY_WITH_TIMEOUT(composer->property("note").toString().contains(u"are on it."_s), 10000);
        QCOMPARE(composer->property("text").toString(), QString());
        // From the room, the new thread opens beside it.
        QTRY_VERIFY(route().startsWith(u"/kest?thread="_s));
        QTRY_VERIFY_WITH_TIMEOUT(showing(u"threadPanel"_s), 10000);
        shoot(u"kest-thread"_s);

        // A teammate's answer arrives in the thread.
        auto* replies = qobject_cast<QQuickItem*>(find(u"threadTimeline"_s));
        QVERIFY(replies);
        QTRY_VERIFY_WITH_TIMEOUT(replies->property("count").toInt() > 1, 30000);
        QTest::qWait(300);
        shoot(u"kest-answer"_s);
        // Once everyone has answered, the replies stay where they are.
        QObject* answering = room->property("threadAnswering").value<QObject*>();
        QTRY_COMPARE_WITH_TIMEOUT(answering->property("count").toInt(), 0, 30000);
        QTest::qWait(300);

        // "How it worked" on the answer opens its run. The bar comes to the
        // message under the pointer.
        // The answer on screen, pointed at where it shows.
        const QRectF shown = replies->mapRectToScene(QRectF(0, 0, replies->width(), replies->height()));
        QQuickItem* answer = nullptr;
        QRectF seen;
        for (QQuickItem* row : drawnInside(replies)) {
            if (!row->property("agent").toBool() || row->property("runHref").toString().isEmpty() ||
                !row->isVisible())
                continue;
            const QRectF part = row->mapRectToScene(QRectF(0, 0, row->width(), row->height())) & shown;
            if (part.height() > seen.height()) {
                answer = row;
                seen = part;
            }
        }
        QVERIFY(answer);
        const QPoint over = window()->mapToGlobal(seen.center().toPoint());
        xdo({u"mousemove"_s, u"--sync"_s, QString::number(over.x()), QString::number(over.y())});
        QQuickItem* howItWorked = nullptr;
        QTRY_VERIFY((howItWorked = shownInside(answer, u"howItWorked"_s)));
        // Pressed as a screen reader presses it (its place moves with the
        // bar, so a pointer aimed a moment earlier can miss).
        QVERIFY(QMetaObject::invokeMethod(howItWorked, "clicked"));
        QTRY_VERIFY(route().contains(u"/runs/"_s));
        QTRY_VERIFY_WITH_TIMEOUT(showing(u"runPage"_s) && text(u"pageTitle"_s).endsWith(u"'s run"_s), 20000);
        shoot(u"run-page"_s);
        m_app->appearance().setMode(u"dark"_s);
        m_app->router().goBack();
        QTRY_VERIFY_WITH_TIMEOUT(showing(u"threadPanel"_s), 20000);
        QTest::qWait(300);
        shoot(u"kest-thread-dark"_s);
        m_app->appearance().setMode(u"system"_s);
    }

    void startsAThreadWithOneTeammate()
    {
        // The sidebar's teammates open their one-to-one chat.
        m_app->router().open(u"/kest/quill/chat"_s);
        QTRY_VERIFY_WITH_TIMEOUT(showing(u"chatThreads"_s), 20000);
        QTRY_COMPARE(text(u"pageTitle"_s), u"Quill"_s);
        shoot(u"direct-chat"_s);
        QTRY_VERIFY(typingGoesTo(u"chatPrompt"_s));
        xdo({u"type"_s, u"--delay"_s, u"5"_s, u"Draft a two-line welcome e-mail"_s});
        xdo({u"key"_s, u"Return"_s});
        QTRY_VERIFY_WITH_TIMEOUT(route().startsWith(u"/kest/quill/chat/"_s), 10000);
        QTRY_VERIFY_WITH_TIMEOUT(showing(u"chatTimeline"_s), 20000);
        // Quill's answer arrives in the thread.
        QTRY_VERIFY_WITH_TIMEOUT(find(u"chatTimeline"_s)->property("count").toInt() >= 2, 30000);
        QTest::qWait(300);
        shoot(u"direct-thread"_s);
    }

    void showsTheMissingPage()
    {
        m_app->router().open(u"/no-such-place"_s);
        QTRY_VERIFY(showing(u"missingPage"_s));
        shoot(u"missing-page"_s);
    }

    void opensTheBell()
    {
        m_app->router().open(u"/kest"_s);
        // Opened while the room still loads: the room, once shown, leaves
        // the keyboard with the popup, so Escape still closes it.
        click(u"bellButton"_s);
        QTRY_VERIFY(find(u"bellPopup"_s) && find(u"bellPopup"_s)->property("opened").toBool());
        QTRY_VERIFY_WITH_TIMEOUT(showing(u"roomTimeline"_s), 20000);
        QTest::qWait(100);
        QVERIFY(!typingGoesTo(u"kestPrompt"_s));
        QQuickItem* popup = find(u"bellPopup"_s)->property("contentItem").value<QQuickItem*>()->parentItem();
        QQuickItem* focused = window()->activeFocusItem();
        QVERIFY(popup && focused && (focused == popup || popup->isAncestorOf(focused)));
        QTest::qWait(500);
        shoot(u"bell"_s);
        // The demo has unread activity: the count leads the window's title
        // and is on the launcher.
        QTRY_VERIFY(m_app->bell().unread() > 0);
        const QString unread = QString::number(m_app->bell().unread());
        QTRY_VERIFY2(window()->title().startsWith(u"("_s + unread + u") "_s), qPrintable(window()->title()));
        QCOMPARE(m_app->badge().count(), m_app->bell().unread());
        // Once a dock that shows the launcher's count is there, the title
        // leaves the count to it.
        {
            QDBusConnection plank = QDBusConnection::connectToBus(QDBusConnection::SessionBus, u"plank"_s);
            QVERIFY(plank.registerService(u"net.launchpad.plank"_s));
            QTRY_VERIFY2(!window()->title().startsWith(u"("_s), qPrintable(window()->title()));
            plank.unregisterService(u"net.launchpad.plank"_s);
            QDBusConnection::disconnectFromBus(u"plank"_s);
        }
        QTRY_VERIFY2(window()->title().startsWith(u"("_s + unread + u") "_s), qPrintable(window()->title()));
        QTest::keyClick(window(), Qt::Key_Escape);
        QTRY_VERIFY(!find(u"bellPopup"_s)->property("visible").toBool());
    }

    void turnsDark()
    {
        m_app->router().open(u"/settings"_s);
        QTRY_COMPARE_WITH_TIMEOUT(text(u"pageTitle"_s), u"Settings"_s, 20000);
        m_app->appearance().setMode(u"dark"_s);
        QVERIFY(m_app->appearance().isDark());
        shoot(u"dark"_s);
        m_app->appearance().setMode(u"system"_s);
    }

    void keepsSiteDataForTheSessionOnly()
    {
        // A page stores something; the next page of the same session sees
        // it (so the check after signing out below can tell).
        QCOMPARE(askPage(u"localStorage.setItem('kestro-e2e','kept');"
                         "indexedDB.open('kestro-e2e').onsuccess=function(){done('stored')}"_s),
                 u"stored"_s);
        m_app->router().open(u"/crm/customers"_s);
        QTRY_COMPARE_WITH_TIMEOUT(text(u"pageTitle"_s), u"Customers"_s, 20000);
        QCOMPARE(storedByPages(), u"kept:1"_s);
    }

    void switchesWorkspace()
    {
        click(u"workspaceButton"_s);
        QTRY_VERIFY(find(u"appMenu"_s) && find(u"appMenu"_s)->property("opened").toBool());
        shoot(u"workspace-menu"_s);
        click(u"workspace-w2"_s);
        QTRY_COMPARE_WITH_TIMEOUT(text(u"workspaceName"_s), u"Lakeside Labs"_s, 10000);
        QCOMPARE(route(), u"/activity"_s);
        QVERIFY(!m_app->app().canWrite()); // a viewer there
        shoot(u"other-workspace"_s);
        // A viewer reads the kest chat but has no composer.
        m_app->router().open(u"/kest"_s);
        QTRY_VERIFY_WITH_TIMEOUT(showing(u"roomTimeline"_s), 20000);
        QTRY_VERIFY(!find(u"kestPrompt"_s)->property("notice").toString().isEmpty());
        QVERIFY(!find(u"kestPrompt"_s)->property("editor").value<QQuickItem*>()->isVisible());
    }

    void signsOut()
    {
        m_app->app().signOut();
        QCOMPARE(m_app->app().phase(), AppModel::Phase::SignedOut);
        QTRY_VERIFY(showing(u"signInScreen"_s));
        QTRY_VERIFY(!Client::shared().auth().tokens());
        m_app->app().signOut(); // nothing happens the second time
        QCOMPARE(m_app->app().phase(), AppModel::Phase::SignedOut);
        shoot(u"signed-out"_s);
    }

    void signsInAgainWithNothingLeft()
    {
        // The next session's pages find nothing of the last one's.
        click(u"signInButton"_s);
        QTRY_COMPARE_WITH_TIMEOUT(m_app->app().phase(), AppModel::Phase::SignedIn, 30000);
        m_app->router().open(u"/settings"_s);
        QTRY_COMPARE_WITH_TIMEOUT(text(u"pageTitle"_s), u"Settings"_s, 20000);
        QCOMPARE(storedByPages(), u"null:0"_s);
        QVERIFY2(qmlWarnings.isEmpty(), qPrintable(qmlWarnings.join(u'\n')));
    }
};

int main(int argc, char** argv)
{
    KestroApp::prepare();
    QStandardPaths::setTestModeEnabled(true);
    QGuiApplication application(argc, argv);
    TestEndToEnd test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_e2e.moc"
