#pragma once

#include <QApplication>
#include <QGuiApplication>
#include <QLocale>
#include <QTemporaryDir>
#include <QTest>
#include <unistd.h>

// Points HOME and the XDG folders at a fresh temporary folder for the life of a test process, so
// no test ever reads or writes the real home, settings or Trash.
class TestSandbox
{
public:
    TestSandbox();
    ~TestSandbox();
    TestSandbox(const TestSandbox &) = delete;
    TestSandbox &operator=(const TestSandbox &) = delete;

    [[nodiscard]] QString root() const { return m_dir.path(); }
    [[nodiscard]] QString home() const { return m_dir.path() + QStringLiteral("/home"); }

    static TestSandbox *instance();

    // Runs one test function of this executable again as the unprivileged user 65534.
    struct Outcome
    {
        bool ran = false; // false where that user cannot run it here
        bool passed = false;
        QByteArray output;
    };
    static Outcome runAsNobody(const char *testFunction);

private:
    QTemporaryDir m_dir;
};

// Root ignores permissions, so a test about them runs again as user 65534 in a child process and
// takes its outcome; it skips where that is impossible. Put first in a test function.
#define DUSTMERE_RUN_AS_NOBODY()                                                                   \
    do {                                                                                           \
        if (geteuid() == 0) {                                                                      \
            const TestSandbox::Outcome outcome =                                                   \
                TestSandbox::runAsNobody(QTest::currentTestFunction());                            \
            if (!outcome.ran)                                                                      \
                QSKIP("cannot run as an unprivileged user here");                                  \
            QVERIFY2(outcome.passed, outcome.output.constData());                                  \
            return;                                                                                \
        }                                                                                          \
    } while (false)

#define DUSTMERE_TEST_MAIN_WITH(AppType, TestObject)                                               \
    int main(int argc, char *argv[])                                                               \
    {                                                                                              \
        TestSandbox sandbox;                                                                       \
        QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));                     \
        AppType app(argc, argv);                                                                   \
        TestObject tc;                                                                             \
        return QTest::qExec(&tc, argc, argv);                                                      \
    }

#define DUSTMERE_TEST_MAIN(TestObject) DUSTMERE_TEST_MAIN_WITH(QCoreApplication, TestObject)
#define DUSTMERE_GUI_TEST_MAIN(TestObject) DUSTMERE_TEST_MAIN_WITH(QGuiApplication, TestObject)
#define DUSTMERE_WIDGET_TEST_MAIN(TestObject) DUSTMERE_TEST_MAIN_WITH(QApplication, TestObject)
