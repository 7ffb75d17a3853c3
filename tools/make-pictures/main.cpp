// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

// Draws the library's pictures: the transport icons, the camera family icons, the sensor preview
// picture and the contact sheet in docs/. Run with the repository root as the only argument.

#include <QDir>
#include <QFileInfo>
#include <QFont>
#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <QPainterPath>
#include <QPainterPathStroker>
#include <QRadialGradient>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <functional>
#include <initializer_list>
#include <random>
#include <vector>

namespace {

constexpr int IconSize = 64;
const QColor SheetBackground("#2F2F37");
const QColor Metal("#E4E8EE");
const QColor Glass("#15171D");
const QColor Ink("#1C1C24");
const QColor Gold("#FFC94A");

QRectF box(qreal x1, qreal y1, qreal x2, qreal y2)
{
    return QRectF(QPointF(x1, y1), QPointF(x2, y2));
}

QPen roundPen(const QColor& colour, qreal width)
{
    return QPen(colour, width, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin);
}

void fillRound(QPainter& p, const QRectF& rect, qreal radius, const QColor& colour)
{
    p.setPen(Qt::NoPen);
    p.setBrush(colour);
    p.drawRoundedRect(rect, radius, radius);
}

void fillEllipse(QPainter& p, const QPointF& centre, qreal rx, qreal ry, const QColor& colour)
{
    p.setPen(Qt::NoPen);
    p.setBrush(colour);
    p.drawEllipse(centre, rx, ry);
}

void fillPolygon(QPainter& p, std::initializer_list<QPointF> points, const QColor& colour)
{
    p.setPen(Qt::NoPen);
    p.setBrush(colour);
    p.drawPolygon(QPolygonF(QList<QPointF>(points)));
}

// A lens seen from the front: metal ring, dark glass, a coating tint and a glint.
void drawLens(QPainter& p, const QPointF& centre, qreal r, const QColor& accent)
{
    fillEllipse(p, centre, r, r, Metal);
    fillEllipse(p, centre, r * 0.74, r * 0.74, Glass);
    QColor coating = accent;
    coating.setAlphaF(0.6);
    fillEllipse(p, centre, r * 0.4, r * 0.4, coating);
    fillEllipse(p, centre + QPointF(-r * 0.32, -r * 0.32), r * 0.15, r * 0.15, Qt::white);
}

// ---- transport icons ----

void drawCameraLink(QPainter& p)
{
    const QColor accent("#FF922B");
    for (qreal x : {2.0, 52.0}) {
        fillRound(p, box(x, 14, x + 10, 50), 3, Metal);
        for (qreal y = 19; y < 47; y += 5)
            fillRound(p, box(x + 2, y, x + 8, y + 1.6), 0.5, Metal.darker(135));
    }
    QPainterPath shell;
    shell.moveTo(12, 19);
    shell.lineTo(52, 19);
    shell.lineTo(52, 39);
    shell.lineTo(47, 45);
    shell.lineTo(17, 45);
    shell.lineTo(12, 39);
    shell.closeSubpath();
    p.setPen(roundPen(accent, 3));
    p.setBrush(accent);
    p.drawPath(shell);
    fillRound(p, box(16, 23, 48, 41), 2, Ink);
    for (int i = 0; i < 8; ++i) {
        fillRound(p, box(18 + i * 3.8, 25, 19.8 + i * 3.8, 30.5), 0.5, Metal);
        fillRound(p, box(19.9 + i * 3.5, 33.5, 21.7 + i * 3.5, 39), 0.5, Metal);
    }
}

void drawCoaXPress(QPainter& p)
{
    const QColor accent("#FFD43B");
    const QPointF c(32, 32);
    fillRound(p, box(2, 28, 62, 36), 3, Metal);
    fillEllipse(p, c, 26, 26, accent);
    fillEllipse(p, c, 18.5, 18.5, Ink);
    fillEllipse(p, c, 13, 13, QColor("#F8F9FA"));
    fillEllipse(p, c, 5, 5, accent.darker(115));
}

void drawEmulator(QPainter& p)
{
    const QColor accent("#B197FC");
    for (int i = 0; i < 4; ++i) {
        const qreal t = 17 + i * 8.5;
        fillRound(p, box(5, t, 59, t + 4), 1, Metal);
        fillRound(p, box(t, 5, t + 4, 59), 1, Metal);
    }
    fillRound(p, box(12, 12, 52, 52), 5, accent);
    p.setPen(roundPen(Ink, 3.2));
    p.setBrush(Qt::NoBrush);
    const QRectF loop = box(19, 19, 45, 45);
    p.drawArc(loop, 100 * 16, 300 * 16);
    fillPolygon(p, {{37.5, 15}, {31, 20.5}, {38.5, 23.5}}, Ink);
    fillPolygon(p, {{28, 24.5}, {28, 39.5}, {40, 32}}, Ink);
}

void drawEthernet(QPainter& p)
{
    const QColor accent("#4DABF7");
    fillRound(p, box(5, 5, 59, 59), 7, accent);
    QPainterPath opening;
    opening.addRect(box(14, 17, 50, 44));
    opening.addRect(box(24, 43, 40, 52));
    p.setPen(Qt::NoPen);
    p.setBrush(Ink);
    p.drawPath(opening.simplified());
    for (int i = 0; i < 8; ++i)
        fillRound(p, box(16.5 + i * 4, 17, 18.5 + i * 4, 27), 0.5, Metal);
    fillRound(p, box(10, 9, 18, 13), 1, QColor("#8CE99A"));
    fillRound(p, box(46, 9, 54, 13), 1, QColor("#FFC078"));
}

void drawFrameGrabber(QPainter& p)
{
    const QColor accent("#51CF66");
    fillRound(p, box(3, 4, 10, 60), 1.5, Metal);
    fillRound(p, box(3, 4, 16, 9), 1.5, Metal);
    fillRound(p, box(4.5, 16, 8.5, 25), 1, Ink);
    fillRound(p, box(4.5, 30, 8.5, 39), 1, Ink);
    fillRound(p, box(10, 11, 61, 46), 3, accent);
    for (qreal x = 21; x < 57; x += 3.2) {
        if (x > 29 && x < 33)
            continue; // the key notch
        fillRound(p, box(x, 45, x + 2.2, 55), 0.8, Gold);
    }
    fillRound(p, box(28, 17, 46, 35), 2, Ink);
    fillRound(p, box(31, 20, 43, 32), 1, accent.darker(170));
    fillRound(p, box(49, 18, 57, 26), 1, Ink);
    fillRound(p, box(49, 30, 57, 38), 1, Ink);
    fillRound(p, box(15, 17, 23, 40), 1, Ink);
}

void drawSerial(QPainter& p)
{
    const QColor accent("#FF6B6B");
    QPainterPath shell;
    shell.moveTo(4, 14);
    shell.lineTo(60, 14);
    shell.lineTo(52, 50);
    shell.lineTo(12, 50);
    shell.closeSubpath();
    p.setPen(roundPen(accent, 6));
    p.setBrush(accent);
    p.drawPath(shell);
    QPainterPath insert;
    insert.moveTo(10, 19);
    insert.lineTo(54, 19);
    insert.lineTo(48, 45);
    insert.lineTo(16, 45);
    insert.closeSubpath();
    p.setPen(roundPen(Ink, 2));
    p.setBrush(Ink);
    p.drawPath(insert);
    for (int i = 0; i < 5; ++i)
        fillEllipse(p, {16 + i * 8.0, 26}, 3, 3, Metal);
    for (int i = 0; i < 4; ++i)
        fillEllipse(p, {20 + i * 8.0, 37}, 3, 3, Metal);
}

void drawUsb(QPainter& p)
{
    const QColor accent("#3BC9DB");
    p.setPen(roundPen(accent, 5));
    p.setBrush(Qt::NoBrush);
    p.drawLine(QPointF(32, 14), QPointF(32, 52));
    p.drawPolyline(QPolygonF({{32, 42}, {17, 33}, {17, 25}}));
    p.drawPolyline(QPolygonF({{32, 48}, {47, 39}, {47, 31}}));
    fillPolygon(p, {{32, 3}, {24.5, 16}, {39.5, 16}}, accent);
    fillEllipse(p, {32, 54}, 6.5, 6.5, accent);
    fillEllipse(p, {17, 22}, 5, 5, accent);
    fillRound(p, box(42, 22, 52, 32), 1, accent);
}

struct Transport {
    const char* name;
    void (*draw)(QPainter&);
};

const std::array<Transport, 7> Transports{{
    {"CameraLink", drawCameraLink},
    {"CoaXPress", drawCoaXPress},
    {"Emulator", drawEmulator},
    {"Ethernet", drawEthernet},
    {"FrameGrabber", drawFrameGrabber},
    {"Serial", drawSerial},
    {"USB", drawUsb},
}};

// ---- camera family icons ----

void drawCube(QPainter& p, const QColor& accent, bool hooded)
{
    const qreal d = 10;
    const QRectF front = box(7, 21, 45, 59);
    const QPointF up(d, -d);
    fillPolygon(p, {front.topLeft(), front.topRight(), front.topRight() + up, front.topLeft() + up},
        accent.lighter(135));
    fillPolygon(p,
        {front.topRight(), front.topRight() + up, front.bottomRight() + up, front.bottomRight()},
        accent.darker(150));
    fillRound(p, front, 1, accent);
    if (hooded)
        fillRound(p, QRectF(front.center() - QPointF(14, 14), QSizeF(28, 28)), 4, Metal);
    drawLens(p, front.center(), hooded ? 11 : 14, accent);
}

void drawLongLens(QPainter& p, const QColor& accent, bool zoom)
{
    fillRound(p, box(8, 13, 22, 22), 2, accent.darker(135));
    fillRound(p, box(2, 19, 28, 51), 4, accent);
    if (zoom) {
        fillRound(p, box(27, 27, 42, 43), 1, Metal);
        fillRound(p, box(41, 19, 59, 51), 2, Metal);
        fillRound(p, box(46, 19, 51, 51), 0, accent.darker(120));
        fillEllipse(p, {59, 35}, 3, 15, Glass);
    } else {
        fillRound(p, box(27, 25, 55, 45), 1, Metal);
        fillRound(p, box(34, 25, 38, 45), 0, accent.darker(120));
        fillRound(p, box(44, 25, 48, 45), 0, accent.darker(120));
        fillPolygon(p, {{54, 25}, {62, 19}, {62, 51}, {54, 45}}, Metal.darker(115));
        fillEllipse(p, {61.5, 35}, 2, 14, Glass);
    }
}

void drawDome(QPainter& p, const QColor& accent, bool hanging)
{
    const qreal baseY = hanging ? 14 : 50;
    const QPointF centre(32, baseY);
    const qreal rx = 25;
    const qreal ry = 30;
    const qreal down = hanging ? 1 : -1;
    QRadialGradient glass(centre + QPointF(-9, down * 14), ry);
    glass.setColorAt(0, QColor("#9AA6B8"));
    glass.setColorAt(1, QColor("#2B313C"));
    QPainterPath dome;
    dome.moveTo(centre.x() - rx, centre.y());
    dome.arcTo(QRectF(centre - QPointF(rx, ry), QSizeF(2 * rx, 2 * ry)), 180, down * 180);
    dome.closeSubpath();
    p.setPen(roundPen(Metal, 2.5));
    p.setBrush(glass);
    p.drawPath(dome);
    drawLens(p, centre + QPointF(0, down * 14), 10, accent);
    p.setPen(roundPen(QColor(255, 255, 255, 190), 2.4));
    p.setBrush(Qt::NoBrush);
    p.drawArc(QRectF(centre - QPointF(rx - 5, ry - 5), QSizeF(2 * rx - 10, 2 * ry - 10)),
        hanging ? 200 * 16 : 115 * 16, 45 * 16);
    fillRound(p, box(3, baseY - 5, 61, baseY + 5), 4, accent);
}

void drawBoard(QPainter& p, const QColor& accent, bool round)
{
    p.setPen(Qt::NoPen);
    p.setBrush(accent);
    if (round)
        p.drawEllipse(QPointF(32, 32), 29, 29);
    else
        p.drawRoundedRect(box(4, 4, 60, 60), 5, 5);
    // Mounting holes sit in the corners of a square board and at the compass points of a round one.
    const std::array<QPointF, 4> holes = round
        ? std::array<QPointF, 4>{{{32, 9}, {55, 32}, {32, 55}, {9, 32}}}
        : std::array<QPointF, 4>{{{9, 9}, {55, 9}, {55, 55}, {9, 55}}};
    for (const QPointF& c : holes) {
        fillEllipse(p, c, 4.2, 4.2, Metal);
        fillEllipse(p, c, 2.3, 2.3, Ink);
    }
    fillRound(p, box(17, 17, 47, 47), 3, Ink);
    drawLens(p, {32, 32}, 12, accent);
}

void drawHandheld(QPainter& p, const QColor& accent, bool withSight)
{
    QPainterPath grip;
    grip.moveTo(18, 30);
    grip.lineTo(34, 30);
    grip.lineTo(30, 60);
    grip.lineTo(14, 60);
    grip.closeSubpath();
    p.setPen(roundPen(accent.darker(135), 4));
    p.setBrush(accent.darker(135));
    p.drawPath(grip);
    fillRound(p, box(36, 32, 40, 44), 2, Metal);
    fillRound(p, box(4, 10, 52, 34), 7, accent);
    if (withSight) {
        fillRound(p, box(1, 14, 6, 28), 2, Metal);
        fillRound(p, box(44, 5, 62, 39), 5, Metal);
        fillEllipse(p, {61, 22}, 2, 14, Glass);
    } else {
        fillRound(p, box(50, 13, 60, 31), 2, Metal);
        fillEllipse(p, {60, 22}, 2, 8, Glass);
    }
    fillRound(p, box(10, 15, 22, 19), 1.5, accent.lighter(140));
}

void drawHousing(QPainter& p, const QColor& accent, bool onPost)
{
    if (onPost) {
        fillRound(p, box(29, 38, 35, 56), 1, Metal);
        fillRound(p, box(18, 54, 46, 60), 2, Metal);
    } else {
        p.setPen(roundPen(Metal, 5));
        p.setBrush(Qt::NoBrush);
        p.drawPolyline(QPolygonF({{26, 38}, {26, 48}, {8, 48}}));
        fillRound(p, box(2, 38, 8, 60), 1, Metal);
    }
    fillRound(p, box(8, 21, 54, 41), 3, accent);
    fillRound(p, box(53, 23, 59, 39), 1.5, Metal);
    fillRound(p, box(55, 25, 59, 37), 1, Glass);
    fillPolygon(p, {{3, 19}, {62, 13}, {62, 18}, {3, 23}}, accent.lighter(130));
    for (qreal x : {14.0, 46.0})
        fillRound(p, box(x, 24, x + 3, 38), 1, accent.darker(140));
}

void drawPanTilt(QPainter& p, const QColor& accent, bool ball)
{
    fillEllipse(p, {32, 56}, 18, 5, Metal.darker(125));
    fillRound(p, box(14, 50, 50, 56), 2, Metal.darker(125));
    fillEllipse(p, {32, 50}, 18, 5, Metal);
    fillRound(p, box(28, 42, 36, 50), 1, Metal);
    p.setPen(roundPen(Metal, 5));
    p.setBrush(Qt::NoBrush);
    p.drawPolyline(QPolygonF({{9, 18}, {9, 43}, {55, 43}, {55, 18}}));
    if (ball)
        fillEllipse(p, {32, 26}, 17, 17, accent);
    else
        fillRound(p, box(14, 10, 50, 40), 4, accent);
    drawLens(p, {32, 26}, 10, accent);
}

void drawCooled(QPainter& p, const QColor& accent, bool stirling)
{
    if (stirling) {
        fillRound(p, box(12, 6, 36, 24), 3, Metal);
        fillRound(p, box(12, 11, 36, 13), 0, Metal.darker(140));
        fillRound(p, box(12, 16, 36, 18), 0, Metal.darker(140));
    } else {
        for (int i = 0; i < 6; ++i)
            fillRound(p, box(8 + i * 6, 6, 11.5 + i * 6, 24), 1, Metal);
    }
    fillRound(p, box(4, 21, 44, 53), 3, accent);
    fillRound(p, box(8, 44, 20, 49), 1, accent.darker(150));
    fillRound(p, box(43, 23, 55, 51), 2, Metal);
    fillRound(p, box(47, 23, 50, 51), 0, accent.darker(130));
    fillRound(p, box(54, 20, 61, 54), 2, Metal.darker(115));
    fillEllipse(p, {61, 37}, 2, 15, Glass);
}

void drawDual(QPainter& p, const QColor& accent, bool stacked)
{
    if (stacked) {
        fillRound(p, box(13, 3, 51, 61), 7, accent);
        drawLens(p, {32, 21}, 13, accent);
        drawLens(p, {32, 47}, 8, accent);
    } else {
        fillRound(p, box(2, 14, 62, 50), 7, accent);
        drawLens(p, {21, 32}, 14, accent);
        drawLens(p, {48, 32}, 8, accent);
    }
}

void drawTube(QPainter& p, const QColor& accent, bool bigLens)
{
    if (!bigLens) {
        QPainterPath cable;
        cable.moveTo(12, 46);
        cable.cubicTo(4, 54, 10, 62, 22, 60);
        p.setPen(roundPen(Metal, 3.5));
        p.setBrush(Qt::NoBrush);
        p.drawPath(cable);
    }
    p.save();
    p.translate(32, 32);
    p.rotate(-35);
    fillRound(p, box(-24, -9, 14, 9), 4, accent);
    fillRound(p, box(-16, -9, -12, 9), 0, accent.darker(140));
    if (bigLens) {
        fillRound(p, box(10, -14, 28, 14), 3, Metal);
        for (qreal x = 13; x < 26; x += 4)
            fillRound(p, box(x, -14, x + 1.6, 14), 0, Metal.darker(135));
        fillEllipse(p, {28, 0}, 2.5, 13, Glass);
    } else {
        fillRound(p, box(13, -8, 24, 8), 2, Metal);
        fillEllipse(p, {24, 0}, 2.5, 7, Glass);
    }
    p.restore();
}

enum class Shape { Cube, LongLens, Dome, Board, Handheld, Housing, PanTilt, Cooled, Dual, Tube };

struct Family {
    const char* name;
    Shape shape;
    const char* accent;
    bool variant; // the second family of a shape gets that shape's alternative form
};

const std::array<Family, 20> Families{{
    {"Aurora", Shape::Cube, "#38D9A9", false},
    {"Basalt", Shape::Housing, "#91A7FF", false},
    {"Cinder", Shape::Cooled, "#FF8A65", false},
    {"Drift", Shape::PanTilt, "#A5E9F5", false},
    {"Ember", Shape::Handheld, "#FF922B", false},
    {"Fjord", Shape::LongLens, "#4C8DF6", false},
    {"Glimmer", Shape::Dual, "#E9C46A", false},
    {"Halo", Shape::Dome, "#FFE066", false},
    {"Iris", Shape::Dome, "#9775FA", true},
    {"Jasper", Shape::PanTilt, "#FA5252", true},
    {"Kelvin", Shape::Cooled, "#3BC9DB", true},
    {"Lumen", Shape::Board, "#C0EB75", false},
    {"Mistral", Shape::Handheld, "#74C0FC", true},
    {"Nova", Shape::Cube, "#F06595", true},
    {"Onyx", Shape::Tube, "#CED4DA", false},
    {"Prism", Shape::Dual, "#DA77F2", true},
    {"Quartz", Shape::Board, "#FCC2D7", true},
    {"Radiant", Shape::LongLens, "#FAB005", true},
    {"Solstice", Shape::Tube, "#FFC078", true},
    {"Tundra", Shape::Housing, "#69DB7C", true},
}};

void drawFamily(QPainter& p, const Family& family)
{
    const QColor accent(family.accent);
    switch (family.shape) {
    case Shape::Cube:
        return drawCube(p, accent, family.variant);
    case Shape::LongLens:
        return drawLongLens(p, accent, family.variant);
    case Shape::Dome:
        return drawDome(p, accent, family.variant);
    case Shape::Board:
        return drawBoard(p, accent, family.variant);
    case Shape::Handheld:
        return drawHandheld(p, accent, family.variant);
    case Shape::Housing:
        return drawHousing(p, accent, family.variant);
    case Shape::PanTilt:
        return drawPanTilt(p, accent, family.variant);
    case Shape::Cooled:
        return drawCooled(p, accent, family.variant);
    case Shape::Dual:
        return drawDual(p, accent, family.variant);
    case Shape::Tube:
        return drawTube(p, accent, family.variant);
    }
}

QImage makeIcon(const std::function<void(QPainter&)>& draw)
{
    QImage image(IconSize, IconSize, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing);
    draw(p);
    return image;
}

// ---- the thermal preview picture ----

// A temperature in degrees Celsius per pixel.
class Field {
public:
    Field(int width, int height)
        : m_width(width), m_height(height), m_values(static_cast<std::size_t>(width * height))
    {
    }

    int width() const { return m_width; }
    int height() const { return m_height; }
    float& at(int x, int y) { return m_values[static_cast<std::size_t>(y * m_width + x)]; }
    float at(int x, int y) const { return m_values[static_cast<std::size_t>(y * m_width + x)]; }

    void set(const std::function<float(int, int)>& temperature)
    {
        for (int y = 0; y < m_height; ++y)
            for (int x = 0; x < m_width; ++x)
                at(x, y) = temperature(x, y);
    }

    // Moves each pixel the shape covers toward the temperature by its antialiased coverage.
    void paint(const QPainterPath& shape, const std::function<float(int, int)>& temperature)
    {
        QImage mask(m_width, m_height, QImage::Format_Alpha8);
        mask.fill(0);
        QPainter p(&mask);
        p.setRenderHint(QPainter::Antialiasing);
        p.fillPath(shape, Qt::black);
        p.end();
        const QRect area = shape.boundingRect().toAlignedRect().intersected(mask.rect());
        for (int y = area.top(); y <= area.bottom(); ++y) {
            const uchar* coverage = mask.constScanLine(y);
            for (int x = area.left(); x <= area.right(); ++x) {
                const float a = coverage[x] / 255.0f;
                if (a > 0)
                    at(x, y) += a * (temperature(x, y) - at(x, y));
            }
        }
    }

    void paint(const QPainterPath& shape, float temperature)
    {
        paint(shape, [temperature](int, int) { return temperature; });
    }

    void addGlow(const QPointF& centre, qreal sigmaX, qreal sigmaY, float amount)
    {
        const int x0 = std::max(0, static_cast<int>(centre.x() - 4 * sigmaX));
        const int x1 = std::min(m_width - 1, static_cast<int>(centre.x() + 4 * sigmaX));
        const int y0 = std::max(0, static_cast<int>(centre.y() - 4 * sigmaY));
        const int y1 = std::min(m_height - 1, static_cast<int>(centre.y() + 4 * sigmaY));
        for (int y = y0; y <= y1; ++y) {
            for (int x = x0; x <= x1; ++x) {
                const qreal dx = (x - centre.x()) / sigmaX;
                const qreal dy = (y - centre.y()) / sigmaY;
                at(x, y) += amount * static_cast<float>(std::exp(-0.5 * (dx * dx + dy * dy)));
            }
        }
    }

    Field blurred(float sigma) const
    {
        const int radius = static_cast<int>(std::ceil(3 * sigma));
        std::vector<float> kernel(static_cast<std::size_t>(2 * radius + 1));
        float sum = 0;
        for (int i = -radius; i <= radius; ++i)
            sum += kernel[static_cast<std::size_t>(i + radius)]
                = std::exp(-0.5f * i * i / (sigma * sigma));
        for (float& k : kernel)
            k /= sum;
        Field across(m_width, m_height);
        Field result(m_width, m_height);
        across.set([&](int x, int y) {
            float v = 0;
            for (int i = -radius; i <= radius; ++i)
                v += kernel[static_cast<std::size_t>(i + radius)]
                    * at(std::clamp(x + i, 0, m_width - 1), y);
            return v;
        });
        result.set([&](int x, int y) {
            float v = 0;
            for (int i = -radius; i <= radius; ++i)
                v += kernel[static_cast<std::size_t>(i + radius)]
                    * across.at(x, std::clamp(y + i, 0, m_height - 1));
            return v;
        });
        return result;
    }

private:
    int m_width;
    int m_height;
    std::vector<float> m_values;
};

float latticeValue(int x, int y, std::uint32_t seed)
{
    std::uint32_t h = static_cast<std::uint32_t>(x) * 374761393u
        + static_cast<std::uint32_t>(y) * 668265263u + seed * 2246822519u;
    h = (h ^ (h >> 13)) * 1274126177u;
    return static_cast<float>((h ^ (h >> 16)) & 0xffff) / 65535.0f;
}

// Smooth deterministic value noise in 0..1, summed over a few octaves.
float fractalNoise(float x, float y, std::uint32_t seed)
{
    float total = 0;
    float weight = 0.5f;
    for (int octave = 0; octave < 4; ++octave) {
        const int ix = static_cast<int>(std::floor(x));
        const int iy = static_cast<int>(std::floor(y));
        const float fx = x - ix;
        const float fy = y - iy;
        const float sx = fx * fx * (3 - 2 * fx);
        const float sy = fy * fy * (3 - 2 * fy);
        const float top = std::lerp(
            latticeValue(ix, iy, seed + octave), latticeValue(ix + 1, iy, seed + octave), sx);
        const float bottom = std::lerp(latticeValue(ix, iy + 1, seed + octave),
            latticeValue(ix + 1, iy + 1, seed + octave), sx);
        total += weight * std::lerp(top, bottom, sy);
        x *= 2;
        y *= 2;
        weight *= 0.5f;
    }
    return total / 0.9375f;
}

QPainterPath polygonPath(std::initializer_list<QPointF> points)
{
    QPainterPath path;
    path.addPolygon(QPolygonF(QList<QPointF>(points)));
    path.closeSubpath();
    return path;
}

QPainterPath rectPath(const QRectF& rect, qreal radius = 0)
{
    QPainterPath path;
    path.addRoundedRect(rect, radius, radius);
    return path;
}

QPainterPath ellipsePath(const QPointF& centre, qreal rx, qreal ry)
{
    QPainterPath path;
    path.addEllipse(centre, rx, ry);
    return path;
}

constexpr int HorizonY = 300;

void paintLandscape(Field& field)
{
    const float groundDepth = float(field.height() - HorizonY);
    field.set([groundDepth](int x, int y) {
        if (y < HorizonY) {
            const float t = y / float(HorizonY);
            const float clouds = fractalNoise(x / 140.0f, y / 45.0f, 7);
            return -30 + 13 * t * t + 16 * std::max(0.0f, clouds - 0.42f) * (1.2f - t);
        }
        const float near = (y - HorizonY) / groundDepth;
        return -8 + 3 * near + 2 * fractalNoise(x / 9.0f, y / 4.0f, 11);
    });
    QPainterPath trees;
    trees.moveTo(0, HorizonY + 2);
    for (int x = 0; x <= field.width(); x += 4) {
        const float crown = 14 + 10 * fractalNoise(x / 28.0f, 0.5f, 3) + 6 * std::sin(x / 61.0f);
        trees.lineTo(x, HorizonY - crown);
    }
    trees.lineTo(field.width(), HorizonY + 2);
    trees.closeSubpath();
    field.paint(trees, [](int x, int y) { return -4 + 4 * fractalNoise(x / 6.0f, y / 6.0f, 5); });

    field.paint(rectPath(box(0, 362, 640, 394)),
        [](int x, int) { return 0.5f + 0.5f * fractalNoise(x / 30.0f, 1, 17); });
    field.paint(rectPath(box(0, 394, 640, 454)),
        [](int x, int y) { return 4.5f + 1.2f * fractalNoise(x / 12.0f, y / 5.0f, 23); });
    for (int x = 10; x < 640; x += 70)
        field.paint(rectPath(box(x, 421, x + 38, 426)), 1.5f);
}

void paintHouse(Field& field)
{
    field.paint(polygonPath({{36, 178}, {175, 92}, {314, 178}}),
        [](int, int y) { return -9 + 0.04f * (y - 92); });
    field.paint(rectPath(box(226, 98, 252, 150)), [](int, int y) { return 58 - 0.7f * (y - 98); });
    field.paint(rectPath(box(222, 94, 256, 103), 2), 75);
    field.paint(rectPath(box(52, 176, 298, 362)), [](int x, int y) {
        return 1.5f + 0.012f * (362 - y) + 0.6f * fractalNoise(x / 20.0f, y / 20.0f, 31);
    });
    field.paint(rectPath(box(52, 262, 298, 268)), 4.5f); // floor slab thermal bridge
    field.paint(rectPath(box(52, 352, 298, 362)), 4);
    const std::array<float, 7> windowTemperatures{17, 21, 9, 19, 22, 18, 20};
    std::size_t i = 0;
    for (int row = 0; row < 2; ++row) {
        for (int column = 0; column < (row == 0 ? 4 : 3); ++column) {
            const QRectF window
                = box(66 + column * 60, 196 + row * 86, 106 + column * 60, 244 + row * 86);
            const float t = windowTemperatures[i++];
            field.addGlow(window.center() + QPointF(0, 34), 16, 7, t > 12 ? 3.5f : 1);
            field.addGlow(window.center(), 26, 26, 0.12f * t);
            field.paint(rectPath(window.adjusted(-3, -3, 3, 3)), 3 + 0.15f * t);
            field.paint(rectPath(window), [t, window](int x, int y) {
                return t + 2.5f * fractalNoise(x / 8.0f, y / 8.0f, 41)
                    - 2 * float((y - window.top()) / window.height());
            });
            const QPointF middle = window.center();
            field.paint(
                rectPath(box(middle.x() - 1.5, window.top(), middle.x() + 1.5, window.bottom())),
                0.6f * t);
            field.paint(
                rectPath(box(window.left(), middle.y() - 6.5, window.right(), middle.y() - 3.5)),
                0.6f * t);
        }
    }
    field.addGlow({262, 320}, 20, 30, 2.5f);
    field.paint(
        rectPath(box(246, 290, 280, 356)), [](int, int y) { return 12 + 0.05f * (y - 290); });
    field.paint(
        rectPath(box(249, 293, 277, 353)), [](int, int y) { return 14 + 0.05f * (y - 290); });
}

void paintChimneySmoke(Field& field)
{
    for (int i = 0; i < 16; ++i) {
        const qreal rise = i * 9.0;
        const QPointF centre(239 + rise * 0.7 + 6 * std::sin(i * 0.9), 86 - rise);
        field.addGlow(centre, 6 + i * 1.3, 6 + i * 1.1, 7.0f / (1 + 0.35f * i));
    }
}

QPainterPath limb(std::initializer_list<QPointF> joints, qreal thickness)
{
    QPainterPath line;
    line.addPolygon(QPolygonF(QList<QPointF>(joints)));
    QPainterPathStroker stroker;
    stroker.setWidth(thickness);
    stroker.setCapStyle(Qt::RoundCap);
    stroker.setJoinStyle(Qt::RoundJoin);
    return stroker.createStroke(line);
}

void paintPerson(Field& field)
{
    field.addGlow({345, 340}, 20, 50, 2);
    field.paint(limb({{340, 352}, {338, 372}, {337, 390}}, 11), 20);
    field.paint(limb({{350, 352}, {353, 372}, {355, 390}}, 11), 20);
    field.paint(limb({{331, 392}, {340, 392}}, 6), 12);
    field.paint(limb({{352, 392}, {362, 392}}, 6), 12);
    QPainterPath torso;
    torso.moveTo(334, 357);
    torso.lineTo(331, 324);
    torso.quadTo(330, 312, 345, 311);
    torso.quadTo(360, 312, 359, 324);
    torso.lineTo(356, 357);
    torso.closeSubpath();
    field.paint(torso, [](int x, int y) {
        return 27 - 0.12f * (y - 311) + 1.5f * fractalNoise(x / 5.0f, y / 5.0f, 53);
    });
    field.paint(limb({{331, 317}, {327, 336}, {326, 352}}, 8), 24);
    field.paint(limb({{359, 317}, {364, 334}, {366, 350}}, 8), 24);
    field.paint(ellipsePath({326, 356}, 4, 5), 31);
    field.paint(ellipsePath({366, 354}, 4, 5), 31);
    field.paint(rectPath(box(341, 302, 349, 313), 3), 32);
    const QPointF head(345, 295);
    field.paint(ellipsePath(head, 9.5, 11.5),
        [head](int, int y) { return 35 - std::max(0.0f, float(head.y() - y - 3)) * 1.3f; });
}

void paintCar(Field& field)
{
    field.addGlow({495, 450}, 95, 7, 4.5f);
    field.addGlow({366, 428}, 24, 7, 4); // exhaust plume
    QPainterPath body;
    body.moveTo(388, 430);
    body.lineTo(386, 392);
    body.quadTo(390, 380, 420, 378);
    body.lineTo(452, 346);
    body.quadTo(500, 340, 545, 347);
    body.lineTo(572, 376);
    body.quadTo(604, 380, 604, 398);
    body.lineTo(604, 430);
    body.closeSubpath();
    field.paint(body, [](int x, int y) { return 7 + 0.02f * (x - 386) - 0.03f * (y - 346); });
    field.paint(polygonPath({{430, 378}, {456, 352}, {494, 350}, {494, 378}}),
        [](int, int y) { return -12 + 0.2f * (y - 350); });
    field.paint(polygonPath({{500, 350}, {542, 353}, {564, 378}, {500, 378}}),
        [](int, int y) { return -12 + 0.2f * (y - 350); });
    field.paint(polygonPath({{560, 379}, {602, 388}, {604, 398}, {560, 392}}),
        [](int x, int) { return 18 + 0.45f * (x - 560); });
    field.paint(rectPath(box(597, 400, 604, 420), 2), 44);
    field.paint(ellipsePath({601, 392}, 3, 4), 30);
    field.paint(rectPath(box(382, 424, 392, 429), 2), 60);
    for (qreal x : {432.0, 560.0}) {
        field.paint(ellipsePath({x, 432}, 21, 21), 28);
        field.paint(ellipsePath({x, 432}, 13, 13), 12);
        field.paint(ellipsePath({x, 432}, 6, 6), 40);
    }
    field.paint(rectPath(box(386, 404, 604, 407)), 4);
}

void paintStreetLamp(Field& field)
{
    field.paint(rectPath(box(617, 206, 623, 392)), -2);
    field.paint(rectPath(box(606, 198, 634, 208), 3), 8);
    field.paint(rectPath(box(610, 206, 630, 212), 2), 52);
    field.addGlow({620, 212}, 16, 12, 6);
}

QRgb ironColour(float v)
{
    struct Stop {
        float at;
        int r, g, b;
    };
    static constexpr std::array<Stop, 8> stops{{
        {0.00f, 0, 0, 0},
        {0.16f, 38, 0, 96},
        {0.34f, 122, 0, 152},
        {0.52f, 200, 28, 92},
        {0.66f, 238, 84, 18},
        {0.80f, 252, 162, 0},
        {0.92f, 255, 226, 64},
        {1.00f, 255, 255, 236},
    }};
    v = std::clamp(v, 0.0f, 1.0f);
    std::size_t i = 1;
    while (i + 1 < stops.size() && v > stops[i].at)
        ++i;
    const Stop& a = stops[i - 1];
    const Stop& b = stops[i];
    const float t = (v - a.at) / (b.at - a.at);
    return qRgb(static_cast<int>(std::lerp(float(a.r), float(b.r), t)),
        static_cast<int>(std::lerp(float(a.g), float(b.g), t)),
        static_cast<int>(std::lerp(float(a.b), float(b.b), t)));
}

QImage makePreview()
{
    Field scene(640, 512);
    paintLandscape(scene);
    paintHouse(scene);
    paintChimneySmoke(scene);
    paintStreetLamp(scene);
    paintPerson(scene);
    paintCar(scene);

    // Soft optics, then a faint bloom around everything warm.
    Field image = scene.blurred(1.1f);
    Field heat(scene.width(), scene.height());
    heat.set([&](int x, int y) { return std::max(0.0f, image.at(x, y) - 10); });
    heat = heat.blurred(9);

    std::mt19937 random(20240611);
    std::normal_distribution<float> pixelNoise(0, 0.18f);
    std::normal_distribution<float> columnNoise(0, 0.08f);
    std::vector<float> columnOffset(static_cast<std::size_t>(image.width()));
    for (float& offset : columnOffset)
        offset = columnNoise(random);

    constexpr float Coldest = -32;
    constexpr float Hottest = 42;
    QImage picture(image.width(), image.height(), QImage::Format_RGB32);
    const float cx = image.width() / 2.0f;
    const float cy = image.height() / 2.0f;
    for (int y = 0; y < image.height(); ++y) {
        QRgb* line = reinterpret_cast<QRgb*>(picture.scanLine(y));
        for (int x = 0; x < image.width(); ++x) {
            const float r2 = ((x - cx) * (x - cx) + (y - cy) * (y - cy)) / (cx * cx + cy * cy);
            const float t = image.at(x, y) + 0.25f * heat.at(x, y) - 4 * r2 * r2
                + pixelNoise(random) + columnOffset[static_cast<std::size_t>(x)];
            line[x] = ironColour((t - Coldest) / (Hottest - Coldest));
        }
    }
    return picture;
}

// ---- the contact sheet ----

struct Named {
    QString name;
    QImage image;
};

QImage makeContactSheet(
    const std::vector<Named>& transports, const std::vector<Named>& families, const QImage& preview)
{
    constexpr int Margin = 24;
    constexpr int Cell = 100;
    constexpr int HeaderHeight = 26;
    constexpr int RowHeight = 96;
    constexpr int SmallCell = 37;
    const QImage smallPreview
        = preview.scaled(preview.size() / 2, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    const int iconsWidth = 10 * Cell;
    const int width = Margin + iconsWidth + 32 + smallPreview.width() + Margin;
    const int height = Margin + 3 * HeaderHeight + 3 * RowHeight + 32 + Margin;

    QImage sheet(width, height, QImage::Format_RGB32);
    sheet.fill(SheetBackground);
    QPainter p(&sheet);
    p.setRenderHint(QPainter::Antialiasing);
    p.setRenderHint(QPainter::SmoothPixmapTransform);
    QFont header;
    header.setPixelSize(13);
    header.setBold(true);
    QFont label;
    label.setPixelSize(12);

    int y = Margin;
    auto drawHeader = [&](const QString& text, int x) {
        p.setFont(header);
        p.setPen(QColor("#9C9CAE"));
        p.drawText(QRect(x, y, 400, HeaderHeight), Qt::AlignLeft | Qt::AlignTop, text);
    };
    auto drawRow = [&](const std::vector<Named>& icons, std::size_t first, std::size_t count) {
        p.setFont(label);
        p.setPen(QColor("#E6E6EE"));
        for (std::size_t i = 0; i < count && first + i < icons.size(); ++i) {
            const int x = Margin + static_cast<int>(i) * Cell;
            p.drawImage(x + (Cell - IconSize) / 2, y, icons[first + i].image);
            p.drawText(QRect(x, y + IconSize + 6, Cell, 20), Qt::AlignHCenter | Qt::AlignTop,
                icons[first + i].name);
        }
        y += RowHeight;
    };

    drawHeader("Transports", Margin);
    y += HeaderHeight;
    drawRow(transports, 0, transports.size());
    drawHeader("Camera families", Margin);
    y += HeaderHeight;
    drawRow(families, 0, 10);
    drawRow(families, 10, 10);
    drawHeader("All icons at 32 \u00d7 32", Margin);
    y += HeaderHeight;
    int x = Margin;
    for (const auto* icons : {&transports, &families}) {
        for (const Named& icon : *icons) {
            p.drawImage(QRect(x, y, 32, 32), icon.image);
            x += SmallCell;
        }
    }

    const int previewX = Margin + iconsWidth + 32;
    y = Margin;
    drawHeader("wspreview.png (half size)", previewX);
    p.drawImage(previewX, Margin + HeaderHeight, smallPreview);
    return sheet;
}

bool save(const QImage& image, const QString& path)
{
    QDir().mkpath(QFileInfo(path).path());
    if (image.save(path, "PNG"))
        return true;
    std::fprintf(stderr, "make-pictures: cannot write %s\n", qPrintable(path));
    return false;
}

} // namespace

int main(int argc, char** argv)
{
    QGuiApplication app(argc, argv);
    if (argc != 2) {
        std::fprintf(stderr, "usage: make-pictures <repository root>\n");
        return 2;
    }
    const QDir root(QString::fromLocal8Bit(argv[1]));
    bool ok = true;

    std::vector<Named> transports;
    for (const Transport& transport : Transports) {
        transports.push_back({transport.name, makeIcon(transport.draw)});
        ok &= save(transports.back().image,
            root.filePath(QStringLiteral("data/images/%1.png").arg(transport.name)));
    }
    std::vector<Named> families;
    for (const Family& family : Families) {
        families.push_back({family.name, makeIcon([&](QPainter& p) { drawFamily(p, family); })});
        ok &= save(families.back().image,
            root.filePath(QStringLiteral("data/images/%1.png").arg(family.name)));
    }
    const QImage preview = makePreview();
    ok &= save(preview, root.filePath("kivcamui/images/wspreview.png"));
    ok &= save(makeContactSheet(transports, families, preview), root.filePath("docs/pictures.png"));
    return ok ? 0 : 1;
}
