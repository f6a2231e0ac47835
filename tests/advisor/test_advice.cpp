#include "advisor/Advice.h"
#include "support/TestSandbox.h"

class TestAdvice : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void displayName_data()
    {
        QTest::addColumn<QByteArray>("path");
        QTest::addColumn<bool>("isFile");
        QTest::addColumn<QString>("expected");
        QTest::newRow("hidden in home") << QByteArray("/home/u/.npm") << false << "~/.npm";
        QTest::newRow("cache in home") << QByteArray("/home/u/.cache") << false << "~/.cache";
        QTest::newRow("Cache deeper")
            << QByteArray("/home/u/Library/Application Support/Slack/Cache") << false
            << "Slack/Cache";
        QTest::newRow("Caches") << QByteArray("/home/u/Library/Caches") << false
                                << "Library/Caches";
        QTest::newRow("hidden deeper")
            << QByteArray("/home/u/Projects/myapp/.venv") << false << "myapp/.venv";
        QTest::newRow("home's parent is no home")
            << QByteArray("/home/.npm") << false << "home/.npm";
        QTest::newRow("under the root") << QByteArray("/.npm") << false << "/.npm";
        QTest::newRow("case-sensitive")
            << QByteArray("/home/u/Library/Caches/x/cache") << false << "cache";
        QTest::newRow("plain folder")
            << QByteArray("/home/u/Projects/web/node_modules") << false << "node_modules";
        QTest::newRow("hidden file")
            << QByteArray("/home/u/Downloads/.Caches.dmg") << true << ".Caches.dmg";
        QTest::newRow("UTF-8 name") << QString::fromUtf8("/home/u/Vidéos/.données").toUtf8()
                                    << false << QString::fromUtf8("Vidéos/.données");
    }

    void displayName()
    {
        QFETCH(QByteArray, path);
        QFETCH(bool, isFile);
        QFETCH(QString, expected);
        Advice a;
        a.path = path.toStdString();
        if (isFile)
            a.target = BigFile{a.path, 30'000'000, 0};
        else
            a.target = Node::create(std::string(BigFile{a.path}.name()));
        QCOMPARE(a.isFile(), isFile);
        QCOMPARE(a.displayName("/home/u"), expected);
    }
};

DUSTMERE_TEST_MAIN(TestAdvice)
#include "test_advice.moc"
