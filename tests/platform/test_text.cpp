#include "platform/DisplayName.h"
#include "platform/Paths.h"
#include "platform/TabularDigits.h"
#include "platform/Utf8.h"
#include "support/TestSandbox.h"

class TestText : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanPaths_data()
    {
        QTest::addColumn<QByteArray>("path");
        QTest::addColumn<QByteArray>("clean");
        const std::pair<const char *, const char *> rows[] = {
            {"/", "/"},
            {"//", "/"},
            {"/home/ada/", "/home/ada"},
            {"//home//ada/./Documents/", "/home/ada/Documents"},
            {"/a/b/../c", "/a/c"},
            {"/..", "/"},
            {"/../../x/..", "/"},
            {"/a/b/..", "/a"},
            {"a//b/../", "a"},
            {"", "."},
            {"./.", "."},
            {"../x", "../x"},
            {"a/../..", ".."},
            {"../../", "../.."},
            {"/a/.../b", "/a/.../b"},
        };
        for (const auto &[path, clean] : rows)
            QTest::newRow(path) << QByteArray(path) << QByteArray(clean);
    }

    void cleanPaths()
    {
        QFETCH(QByteArray, path);
        QFETCH(QByteArray, clean);
        QCOMPARE(QByteArray::fromStdString(Paths::clean(path.toStdString())), clean);
    }

    void absoluteAndUnder()
    {
        QCOMPARE(Paths::absolute("..", "/home/ada"), std::string("/home"));
        QCOMPARE(Paths::absolute("a//b/../", "/w/"), std::string("/w/a"));
        QCOMPARE(Paths::absolute("/x/./", "/w"), std::string("/x"));
        QCOMPARE(Paths::absolute(".", "/"), std::string("/"));
        QVERIFY(Paths::isUnder("/x", "/") && Paths::isUnder("/", "/"));
        QVERIFY(Paths::isUnder("/a/b", "/a") && !Paths::isUnder("/ab", "/a"));
    }

    void bytesSurviveText()
    {
        QVERIFY(Utf8::isValid("caf\xc3\xa9 \xe6\x97\xa5\xf0\x9f\x90\x89"));
        for (const std::string_view bad :
             {"\xe9t\xe9", "\xc0\xaf" /* overlong "/" */, "\xed\xa0\x80" /* surrogate */,
              "\xf4\x90\x80\x80", "\xe6\x97" /* cut short */})
            QVERIFY(!Utf8::isValid(bad));
        for (const std::string &bytes :
             {std::string("plain"), std::string("caf\xc3\xa9"), std::string("latin1 \xe9t\xe9"),
              std::string("\xed\xb2\x80 looks like an escape"), std::string("\xff\xfe\x80"),
              std::string("\xf0\x9f\x90\x89\xf0\x9f")}) {
            QCOMPARE(Utf8::bytes(Utf8::lossless(bytes)), bytes);
        }
        QCOMPARE(Utf8::lossless("caf\xc3\xa9"), QStringLiteral("café"));
        QCOMPARE(Utf8::bytes(QStringLiteral("🐉 \uFFFD")),
                 std::string("\xf0\x9f\x90\x89 \xef\xbf\xbd"));
    }

    void namesCannotHurt_data()
    {
        QTest::addColumn<QByteArray>("name");
        QTest::addColumn<QString>("shown");
        QTest::newRow("plain") << QByteArray("Movies") << QStringLiteral("Movies");
        QTest::newRow("accented") << QByteArray("caf\xc3\xa9") << QStringLiteral("café");
        QTest::newRow("terminal escapes") << QByteArray("x\x1b]0;pwned\x07\x1b[2J")
                                          << QStringLiteral("x\\x1B]0;pwned\\x07\\x1B[2J");
        QTest::newRow("line breaks")
            << QByteArray("a\r\nb\tc\x7f") << QStringLiteral("a\\r\\nb\\tc\\x7F");
        QTest::newRow("C1 and separators") << QByteArray("\xc2\x9b"
                                                         "1\xe2\x80\xa8"
                                                         "2")
                                           << QStringLiteral("\\u009B1\\u20282");
        QTest::newRow("override") << QByteArray("evil\xe2\x80\xaegpj.exe")
                                  << QStringLiteral("evil\\u202Egpj.exe");
        QTest::newRow("not UTF-8") << QByteArray("bad \xff") << QStringLiteral("bad \\xFF");
        QTest::newRow("right to left") << QByteArray("\xd7\xa9\xd7\x9c\xd7\x95\xd7\x9d 2")
                                       << QStringLiteral("\u2068שלום 2\u2069");
    }

    void namesCannotHurt()
    {
        QFETCH(QByteArray, name);
        QFETCH(QString, shown);
        QCOMPARE(DisplayName::of(name.toStdString()), shown);
        if (Utf8::isValid(name.toStdString()))
            QCOMPARE(DisplayName::of(QString::fromUtf8(name)), shown);
    }

    // In a font whose "1" is narrow, every digit still takes the widest digit's cell.
    void tabularDigitsTakeEqualCells()
    {
        const auto advance = [](const QString &s) {
            double w = 0;
            for (const QChar c : s)
                w += c == u'1' ? 2 : c == u' ' ? 3 : 6;
            return w;
        };
        const TabularDigits::Layout ones = TabularDigits::layout(QStringLiteral("11 MB"), advance);
        QCOMPARE(ones.width, TabularDigits::layout(QStringLiteral("88 MB"), advance).width);
        QCOMPARE(ones.width, 6 + 6 + 3 + 6 + 6);
        QCOMPARE(ones.pieces.size(), 3u);
        QCOMPARE(ones.pieces[1].x, 6 + 2.0); // centred in its cell
        QCOMPARE(ones.pieces[2].text, QStringLiteral(" MB"));
        QCOMPARE(ones.pieces[2].x, 12.0);
    }
};

DUSTMERE_TEST_MAIN(TestText)
#include "test_text.moc"
