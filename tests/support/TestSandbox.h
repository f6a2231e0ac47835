#pragma once

#include <QApplication>
#include <QGuiApplication>
#include <QLocale>
#include <QTemporaryDir>
#include <QTest>

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

private:
    QTemporaryDir m_dir;
};

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
