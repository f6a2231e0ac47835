#include "platform/Icons.h"

#include <QGuiApplication>
#include <QHash>
#include <QPainter>
#include <QPainterPath>
#include <QPixmap>
#include <QPixmapCache>

namespace {

const QHash<QString, QString> &table()
{
    static const QHash<QString, QString> t = {
        {QStringLiteral("folder"), QStringLiteral("folder-symbolic")},
        {QStringLiteral("folder.fill"), QStringLiteral("folder-symbolic")},
        {QStringLiteral("doc.fill"), QStringLiteral("text-x-generic-symbolic")},
        {QStringLiteral("chevron.left"), QStringLiteral("go-previous-symbolic")},
        {QStringLiteral("chevron.right"), QStringLiteral("go-next-symbolic")},
        {QStringLiteral("arrow.clockwise"), QStringLiteral("view-refresh-symbolic")},
        {QStringLiteral("arrow.triangle.2.circlepath"),
         QStringLiteral("emblem-synchronizing-symbolic")},
        {QStringLiteral("sparkles"), QStringLiteral("starred-symbolic")},
        {QStringLiteral("trash"), QStringLiteral("user-trash-symbolic")},
        {QStringLiteral("speaker.slash.fill"), QStringLiteral("audio-volume-muted-symbolic")},
        {QStringLiteral("speaker.fill"), QStringLiteral("audio-volume-low-symbolic")},
        {QStringLiteral("speaker.wave.1.fill"), QStringLiteral("audio-volume-low-symbolic")},
        {QStringLiteral("speaker.wave.2.fill"), QStringLiteral("audio-volume-medium-symbolic")},
        {QStringLiteral("speaker.wave.3.fill"), QStringLiteral("audio-volume-high-symbolic")},
        {QStringLiteral("plus"), QStringLiteral("zoom-in-symbolic")},
        {QStringLiteral("minus"), QStringLiteral("zoom-out-symbolic")},
        {QStringLiteral("info"), QStringLiteral("dialog-information-symbolic")},
        {QStringLiteral("magnifyingglass"), QStringLiteral("edit-find-symbolic")},
        {QStringLiteral("checkmark.seal.fill"), QStringLiteral("emblem-ok-symbolic")},
        {QStringLiteral("eye.fill"), QStringLiteral("view-reveal-symbolic")},
        {QStringLiteral("pencil"), QStringLiteral("document-edit-symbolic")},
    };
    return t;
}

// Glyphs for symbols no theme has (and for any theme that lacks the mapped icon).
void drawGlyph(QPainter &p, const QString &name, qreal s)
{
    p.setPen(Qt::NoPen);
    if (name == QLatin1String("chart.bar.fill")) {
        const qreal w = s * 0.22;
        p.drawRoundedRect(QRectF(s * 0.08, s * 0.5, w, s * 0.42), 1.5, 1.5);
        p.drawRoundedRect(QRectF(s * 0.39, s * 0.2, w, s * 0.72), 1.5, 1.5);
        p.drawRoundedRect(QRectF(s * 0.7, s * 0.36, w, s * 0.56), 1.5, 1.5);
        return;
    }
    if (name == QLatin1String("bolt.fill")) {
        p.drawPolygon(QPolygonF({{s * 0.58, s * 0.04},
                                 {s * 0.18, s * 0.56},
                                 {s * 0.46, s * 0.56},
                                 {s * 0.38, s * 0.96},
                                 {s * 0.82, s * 0.42},
                                 {s * 0.54, s * 0.42}}));
        return;
    }
    if (name == QLatin1String("map")) {
        // A map folded in three, its middle panel in the fold's shade (no theme has one; the
        // location icon is a crosshair).
        const QPolygonF left(
            {{s * 0.06, s * 0.22}, {s * 0.36, s * 0.1}, {s * 0.36, s * 0.78}, {s * 0.06, s * 0.9}});
        const QPolygonF middle(
            {{s * 0.4, s * 0.1}, {s * 0.6, s * 0.22}, {s * 0.6, s * 0.9}, {s * 0.4, s * 0.78}});
        const QPolygonF right(
            {{s * 0.64, s * 0.22}, {s * 0.94, s * 0.1}, {s * 0.94, s * 0.78}, {s * 0.64, s * 0.9}});
        p.drawPolygon(left);
        p.drawPolygon(right);
        p.setOpacity(0.55);
        p.drawPolygon(middle);
        p.setOpacity(1);
        return;
    }
    if (name == QLatin1String("checkmark.circle.fill")) {
        p.drawEllipse(QRectF(s * 0.06, s * 0.06, s * 0.88, s * 0.88));
        p.setCompositionMode(QPainter::CompositionMode_Clear);
        p.setPen(QPen(Qt::black, qMax(1.5, s * 0.11), Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        p.drawPolyline(QPolygonF({{s * 0.3, s * 0.52}, {s * 0.44, s * 0.66}, {s * 0.7, s * 0.36}}));
        return;
    }
    QPen pen(p.brush().color(), qMax(1.5, s * 0.12), Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin);
    p.setPen(pen);
    p.setBrush(Qt::NoBrush);
    if (name == QLatin1String("chevron.left")) {
        p.drawPolyline(QPolygonF({{s * 0.62, s * 0.2}, {s * 0.35, s * 0.5}, {s * 0.62, s * 0.8}}));
    } else if (name == QLatin1String("chevron.right")) {
        p.drawPolyline(QPolygonF({{s * 0.38, s * 0.2}, {s * 0.65, s * 0.5}, {s * 0.38, s * 0.8}}));
    } else if (name == QLatin1String("plus")) {
        p.drawLine(QPointF(s * 0.5, s * 0.2), QPointF(s * 0.5, s * 0.8));
        p.drawLine(QPointF(s * 0.2, s * 0.5), QPointF(s * 0.8, s * 0.5));
    } else if (name == QLatin1String("minus")) {
        p.drawLine(QPointF(s * 0.2, s * 0.5), QPointF(s * 0.8, s * 0.5));
    } else {
        p.drawEllipse(QRectF(s * 0.2, s * 0.2, s * 0.6, s * 0.6));
    }
}

// Adwaita backs whatever theme the desktop has; without a desktop it is the theme.
void useAdwaitaBehindTheTheme()
{
    static const bool done = [] {
        QStringList paths = QIcon::themeSearchPaths();
        const QByteArray dataDirs = qgetenv("XDG_DATA_DIRS");
        const QString dirs = dataDirs.isEmpty() ? QStringLiteral("/usr/local/share:/usr/share")
                                                : QString::fromLocal8Bit(dataDirs);
        for (const QString &dir : dirs.split(u':', Qt::SkipEmptyParts)) {
            const QString icons = dir + QStringLiteral("/icons");
            if (!paths.contains(icons))
                paths << icons;
        }
        QIcon::setThemeSearchPaths(paths);
        const QString theme = QIcon::themeName();
        if (theme.isEmpty() || theme == QLatin1String("hicolor"))
            QIcon::setThemeName(QStringLiteral("Adwaita"));
        else
            QIcon::setFallbackThemeName(QStringLiteral("Adwaita"));
        return true;
    }();
    (void)done;
}

QPixmap tinted(const QPixmap &source, const QColor &color)
{
    QPixmap out = source;
    QPainter p(&out);
    p.setCompositionMode(QPainter::CompositionMode_SourceIn);
    p.fillRect(out.rect(), color);
    return out;
}

} // namespace

QString Icons::themeName(const QString &symbol)
{
    return table().value(symbol);
}

QIcon Icons::symbol(const QString &name, const QColor &color, int size)
{
    useAdwaitaBehindTheTheme();
    const qreal ratio = qApp ? qApp->devicePixelRatio() : 1.0;
    const int px = qRound(size * ratio);
    // Every row of a long list asks for the same few icons; the pixmap cache keeps them bounded.
    const QString key = QStringLiteral("dustmere-symbol:%1:%2:%3:%4:%5")
                            .arg(name, QIcon::themeName())
                            .arg(color.rgba(), 0, 16)
                            .arg(size)
                            .arg(ratio);
    QIcon icon;
    QIcon fromTheme;
    bool themeLooked = false;
    for (const QIcon::Mode mode : {QIcon::Normal, QIcon::Disabled}) {
        const QString modeKey = key + (mode == QIcon::Disabled ? u'd' : u'n');
        QPixmap pm;
        if (QPixmapCache::find(modeKey, &pm)) {
            icon.addPixmap(pm, mode);
            continue;
        }
        if (!themeLooked) {
            const QString theme = themeName(name);
            fromTheme = theme.isEmpty() ? QIcon() : QIcon::fromTheme(theme);
            themeLooked = true;
        }
        QColor c = color;
        if (mode == QIcon::Disabled)
            c.setAlphaF(c.alphaF() * 0.35);
        if (!fromTheme.isNull())
            pm = fromTheme.pixmap(QSize(px, px));
        if (pm.isNull()) {
            pm = QPixmap(px, px);
            pm.fill(Qt::transparent);
            QPainter p(&pm);
            p.setRenderHint(QPainter::Antialiasing);
            p.setBrush(c);
            drawGlyph(p, name, px);
        }
        pm = tinted(pm, c);
        pm.setDevicePixelRatio(ratio);
        QPixmapCache::insert(modeKey, pm);
        icon.addPixmap(pm, mode);
    }
    return icon;
}
