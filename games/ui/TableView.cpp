#include "games/ui/TableView.h"

#include <QLocale>
#include <QPainter>
#include <QPainterPath>
#include <QtMath>

#include "games/ui/CardImages.h"

namespace tavren {

namespace {

const QColor kRail(62, 38, 22);
const QColor kFelt(28, 96, 58);
const QColor kFeltLight(44, 124, 76);
const QColor kPanel(16, 22, 18, 215);
const QColor kGold(255, 208, 96);
const QColor kText(236, 240, 232);
constexpr QSizeF kSeatPanel(136, 46);
constexpr QSizeF kHoleCard(50, 70);
constexpr QSizeF kBoardCard(48, 68);

QString Chips(int chips) {
    return QLocale(QLocale::English).toString(chips);
}

QPointF Lerp(QPointF a, QPointF b, double t) {
    return a + (b - a) * t;
}

void DrawChipStack(QPainter& p, QPointF at, int amount) {
    const QColor colours[] = {QColor(200, 40, 40), QColor(30, 90, 200), QColor(30, 30, 30)};
    const int discs = amount >= 1000 ? 3 : amount >= 100 ? 2 : 1;
    for (int i = 0; i < discs; ++i) {
        const QRectF disc(at.x() - 9, at.y() - 6 - i * 3, 18, 10);
        p.setPen(QPen(Qt::white, 1.2, Qt::DashLine));
        p.setBrush(colours[i]);
        p.drawEllipse(disc);
    }
    p.setPen(kText);
    QFont f = p.font();
    f.setBold(true);
    p.setFont(f);
    p.drawText(QRectF(at.x() + 12, at.y() - 12, 80, 18), Qt::AlignLeft | Qt::AlignVCenter,
               Chips(amount));
}

}  // namespace

TableView::TableView(QWidget* parent) : QWidget(parent) {
    setObjectName(QStringLiteral("tableView"));
    setMinimumSize(minimumSizeHint());
    for (int seat = 0; seat < 10; ++seat) {
        auto* label = new QLabel(this);
        label->setObjectName(QStringLiteral("seatLabel%1").arg(seat));
        label->setAlignment(Qt::AlignCenter);
        label->setStyleSheet(QStringLiteral("color: #FFD060; font-weight: bold;"));
        label->hide();
        labels_.push_back(label);
    }
}

void TableView::show(const TableState& state, const QString& ownName) {
    state_ = state;
    ownName_ = ownName;
    secondsLeft_ = state.secondsLeft;
    for (int seat = 0; seat < labels_.size(); ++seat) {
        const TablePlayer* player = state_.player(seat);
        labels_[seat]->setVisible(player != nullptr && seat < state_.seats);
        labels_[seat]->setText(player ? SeatLabel(player->name) : QString());
    }
    placeLabels();
    update();
}

void TableView::setSecondsLeft(int seconds) {
    secondsLeft_ = seconds;
    update();
}

QLabel* TableView::seatLabel(int seat) const {
    return seat >= 0 && seat < labels_.size() && state_.player(seat) ? labels_[seat] : nullptr;
}

QRectF TableView::feltRect() const {
    const QRectF area = QRectF(rect()).adjusted(80, 50, -80, -70);
    return area;
}

QPointF TableView::seatCentre(int seat) const {
    const int seats = qMax(2, state_.seats);
    const int bottom = state_.ownSeat >= 0 ? state_.ownSeat : 0;
    const int place = ((seat - bottom) % seats + seats) % seats;
    const double angle = M_PI / 2 + 2 * M_PI * place / seats;
    const QRectF felt = feltRect();
    return {felt.center().x() + (felt.width() / 2 + 4) * std::cos(angle),
            felt.center().y() + (felt.height() / 2 + 4) * std::sin(angle)};
}

void TableView::placeLabels() {
    for (int seat = 0; seat < labels_.size(); ++seat) {
        const QPointF c = seatCentre(seat);
        labels_[seat]->setGeometry(
            QRectF(c.x() - kSeatPanel.width() / 2, c.y() - 21, kSeatPanel.width(), 18).toRect());
    }
}

void TableView::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    placeLabels();
}

void TableView::paintEvent(QPaintEvent*) {
    QPainter p(this);
    p.setRenderHint(QPainter::Antialiasing);
    p.setRenderHint(QPainter::SmoothPixmapTransform);
    p.fillRect(rect(), QColor(24, 28, 34));

    // The table: a wooden rail round a felt with a lighter middle.
    const QRectF felt = feltRect();
    p.setPen(Qt::NoPen);
    p.setBrush(kRail);
    p.drawRoundedRect(felt.adjusted(-18, -18, 18, 18), felt.height() / 2 + 18,
                      felt.height() / 2 + 18);
    QRadialGradient cloth(felt.center(), felt.width() / 2);
    cloth.setColorAt(0, kFeltLight);
    cloth.setColorAt(1, kFelt);
    p.setBrush(cloth);
    p.drawRoundedRect(felt, felt.height() / 2, felt.height() / 2);
    p.setPen(QPen(QColor(255, 255, 255, 40), 2));
    p.setBrush(Qt::NoBrush);
    p.drawRoundedRect(felt.adjusted(22, 22, -22, -22), felt.height() / 2 - 22,
                      felt.height() / 2 - 22);
    p.setPen(QColor(255, 255, 255, 60));
    QFont brand = font();
    brand.setPointSize(brand.pointSize() + 6);
    brand.setBold(true);
    p.setFont(brand);
    p.drawText(QRectF(felt.left(), felt.top() + 24, felt.width(), 30), Qt::AlignCenter,
               QStringLiteral("TAVREN HOLD'EM"));

    // The board and the pots.
    const QPointF centre = felt.center();
    const double boardWidth = 5 * kBoardCard.width() + 4 * 6;
    for (int i = 0; i < 5; ++i) {
        const QRectF slot(centre.x() - boardWidth / 2 + i * (kBoardCard.width() + 6),
                          centre.y() - kBoardCard.height() / 2 - 10, kBoardCard.width(),
                          kBoardCard.height());
        const int card = state_.board[static_cast<std::size_t>(i)];
        if (card != 0) {
            p.drawPixmap(slot.toRect(), CardPixmap(card));
        } else {
            p.setPen(QPen(QColor(255, 255, 255, 50), 1.5, Qt::DashLine));
            p.setBrush(Qt::NoBrush);
            p.drawRoundedRect(slot, 5, 5);
        }
    }
    QFont normal = font();
    normal.setBold(true);
    p.setFont(normal);
    QStringList potTexts;
    for (int i = 0; i < state_.pots.size(); ++i) {
        potTexts << (i == 0 ? QStringLiteral("Pot: ") : QStringLiteral("Side pot %1: ").arg(i)) +
                        Chips(state_.pots[i]);
    }
    p.setPen(kGold);
    p.drawText(QRectF(felt.left(), centre.y() + kBoardCard.height() / 2 - 4, felt.width(), 20),
               Qt::AlignCenter, potTexts.join(QStringLiteral("    ")));
    if (!state_.winner.isEmpty()) {
        p.setPen(Qt::white);
        p.drawText(QRectF(felt.left() + 30, centre.y() + kBoardCard.height() / 2 + 16,
                          felt.width() - 60, 20),
                   Qt::AlignCenter, state_.winner);
    }

    // The seats.
    QFont small = font();
    for (const TablePlayer& player : state_.players) {
        if (player.seat >= state_.seats) {
            continue;
        }
        const QPointF c = seatCentre(player.seat);
        const bool toAct = player.seat == state_.toAct;
        const bool own = player.name.compare(ownName_, Qt::CaseInsensitive) == 0;

        // Cards, towards the middle of the table.
        if (player.dealtIn() && player.state != QLatin1String("folded")) {
            const QPointF at = Lerp(c, centre, 0.30);
            for (int i = 0; i < 2; ++i) {
                const QRectF card(at.x() - kHoleCard.width() + i * (kHoleCard.width() - 8) + 4,
                                  at.y() - kHoleCard.height() / 2, kHoleCard.width(),
                                  kHoleCard.height());
                p.drawPixmap(card.toRect(), CardPixmap(player.cards[static_cast<std::size_t>(i)]));
            }
        }
        if (player.bet > 0) {
            DrawChipStack(p, Lerp(c, centre, 0.55), player.bet);
        }
        if (player.seat == state_.button) {
            // Beside the seat's panel, clear of the cards that lie towards the middle.
            const QPointF at(c.x() + kSeatPanel.width() / 2 + 16, c.y() - kSeatPanel.height() / 2);
            p.setPen(QPen(Qt::black, 1));
            p.setBrush(Qt::white);
            p.drawEllipse(at, 10, 10);
            p.setPen(Qt::black);
            p.drawText(QRectF(at.x() - 10, at.y() - 10, 20, 20), Qt::AlignCenter,
                       QStringLiteral("D"));
        }

        const QRectF panel(c.x() - kSeatPanel.width() / 2, c.y() - kSeatPanel.height() / 2,
                           kSeatPanel.width(), kSeatPanel.height());
        p.setPen(QPen(toAct ? kGold : (own ? QColor(140, 190, 255) : QColor(90, 90, 90)),
                      toAct ? 3 : 1.5));
        p.setBrush(kPanel);
        p.drawRoundedRect(panel, 9, 9);
        QString line = Chips(player.chips);
        if (player.away) {
            line += QStringLiteral("  (away)");
        } else if (player.state == QLatin1String("out")) {
            line += QStringLiteral("  sitting out");
        } else if (player.state == QLatin1String("folded")) {
            line += QStringLiteral("  folded");
        } else if (player.state == QLatin1String("allin")) {
            line += QStringLiteral("  ALL IN");
        }
        p.setFont(small);
        p.setPen(kText);
        p.drawText(QRectF(panel.left(), panel.top() + 22, panel.width(), 20), Qt::AlignCenter,
                   line);
        if (toAct && secondsLeft_ > 0) {
            // The clock of the player to act, as a shrinking bar under the panel.
            const double share = state_.turnSeconds > 0
                                     ? qBound(0.0, double(secondsLeft_) / state_.turnSeconds, 1.0)
                                     : 1.0;
            p.setPen(Qt::NoPen);
            p.setBrush(QColor(0, 0, 0, 160));
            p.drawRoundedRect(QRectF(panel.left() + 8, panel.bottom() + 3, panel.width() - 16, 6),
                              3, 3);
            p.setBrush(share > 0.3 ? kGold : QColor(230, 80, 60));
            p.drawRoundedRect(
                QRectF(panel.left() + 8, panel.bottom() + 3, (panel.width() - 16) * share, 6), 3,
                3);
            p.setPen(kGold);
            p.drawText(QRectF(panel.right() + 4, panel.top(), 40, panel.height()),
                       Qt::AlignLeft | Qt::AlignVCenter, QStringLiteral("%1s").arg(secondsLeft_));
        }
    }
    // Empty seats.
    p.setFont(small);
    for (int seat = 0; seat < state_.seats; ++seat) {
        if (state_.player(seat)) {
            continue;
        }
        const QPointF c = seatCentre(seat);
        const QRectF panel(c.x() - 50, c.y() - 14, 100, 28);
        p.setPen(QPen(QColor(255, 255, 255, 50), 1, Qt::DashLine));
        p.setBrush(QColor(0, 0, 0, 60));
        p.drawRoundedRect(panel, 8, 8);
        p.setPen(QColor(255, 255, 255, 110));
        p.drawText(panel, Qt::AlignCenter, QStringLiteral("Empty seat"));
    }
}

}  // namespace tavren
