#include "widgets/message_box.h"

#include <QAbstractButton>
#include <QApplication>
#include <QCloseEvent>
#include <QCoreApplication>
#include <QGridLayout>
#include <QKeyEvent>
#include <QMessageBox>
#include <QPainter>
#include <QPixmap>
#include <QPushButton>
#include <optional>
#include <vector>

using namespace Qt::Literals::StringLiterals;

namespace quorvane {
namespace {

constexpr qsizetype kLongestText = 400;

QString FitForScreen(const QString& text) {
    if (text.size() <= kLongestText) {
        return text;
    }
    return text.first(kLongestText / 2) + u" … "_s + text.last(kLongestText / 2);
}

// A question mark or an exclamation mark, of `side` pixels at scale 1.
QPixmap DrawSign(MessageIcon icon, int side, double scale) {
    const bool isQuestion = icon == MessageIcon::Question;
    QPixmap sign(QSize(side, side) * scale);
    sign.setDevicePixelRatio(scale);
    sign.fill(Qt::transparent);
    QPainter painter(&sign);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(isQuestion ? QColor(40, 95, 190) : QColor(250, 200, 40));
    if (isQuestion) {
        painter.drawEllipse(QRect(1, 1, side - 2, side - 2));
    } else {
        painter.drawPolygon(QPolygon({{side / 2, 1}, {side - 1, side - 2}, {1, side - 2}}));
    }
    QFont font = painter.font();
    font.setBold(true);
    font.setPixelSize(side * 5 / 8);
    painter.setFont(font);
    painter.setPen(isQuestion ? Qt::white : Qt::black);
    const QRect room(0, isQuestion ? 0 : side / 8, side, side);  // a triangle is wide at its foot
    painter.drawText(room, Qt::AlignCenter, isQuestion ? u"?"_s : u"!"_s);
    return sign;
}

class QuestionBox : public QMessageBox {
public:
    QuestionBox(QWidget* parent, const QString& text, const QString& caption, MessageButtons buttons)
        : QMessageBox(parent) {
        setObjectName(u"messageBox"_s);
        installEventFilter(this);
        setTextFormat(Qt::PlainText);
        setText(FitForScreen(text));
        setWindowTitle(caption.isEmpty() ? QCoreApplication::applicationName() : caption);
        if (buttons == MessageButtons::Ok) {
            AddAnswer(u"确定"_s, MessageAnswer::Ok);
            m_escape = MessageAnswer::Ok;
            return;
        }
        AddAnswer(u"是"_s, MessageAnswer::Yes);
        AddAnswer(u"否"_s, MessageAnswer::No);
        if (buttons == MessageButtons::YesNoCancel) {
            AddAnswer(u"取消"_s, MessageAnswer::Cancel);
            m_escape = MessageAnswer::Cancel;
        } else if (buttons == MessageButtons::YesNoAll) {
            AddAnswer(u"全部是"_s, MessageAnswer::YesToAll);
        }
    }

    MessageAnswer Ask() {
        WidenForCaption();
        QApplication::setOverrideCursor(Qt::ArrowCursor);
        exec();
        QApplication::restoreOverrideCursor();
        return m_answer;
    }

protected:
    void keyPressEvent(QKeyEvent* event) override {
        if (event->key() == Qt::Key_Escape) {
            Leave();
        } else if (event->key() == Qt::Key_Y) {
            Click(MessageAnswer::Yes);
        } else if (event->key() == Qt::Key_N) {
            Click(MessageAnswer::No);
        } else if (event->key() == Qt::Key_A) {
            Click(MessageAnswer::YesToAll);
        } else {
            QMessageBox::keyPressEvent(event);
        }
    }

    // A key that is held down, also since before the box opened, repeats; it answers nothing.
    bool eventFilter(QObject* watched, QEvent* event) override {
        const bool isKey = event->type() == QEvent::KeyPress || event->type() == QEvent::KeyRelease;
        return (isKey && static_cast<QKeyEvent*>(event)->isAutoRepeat()) ||
               QMessageBox::eventFilter(watched, event);
    }

    void closeEvent(QCloseEvent* event) override {
        event->ignore();
        Leave();
    }

private:
    // The box takes its width from its text and would cut a longer caption.
    void WidenForCaption() {
        if (auto* grid = qobject_cast<QGridLayout*>(layout())) {
            constexpr int frameButtons = 140;
            const int width = fontMetrics().horizontalAdvance(windowTitle()) + frameButtons;
            grid->addItem(new QSpacerItem(width, 0), grid->rowCount(), 0, 1, grid->columnCount());
        }
    }

    struct Answer {
        MessageAnswer answer;
        QPushButton* button;
    };

    // All buttons have the same role. Their order is then the same on every platform, and the box assigns no
    // button to Esc.
    void AddAnswer(const QString& text, MessageAnswer answer) {
        QPushButton* button = addButton(text, QMessageBox::ActionRole);
        button->installEventFilter(this);
        connect(button, &QPushButton::clicked, this, [this, answer] {
            m_answer = answer;
            done(0);
        });
        if (m_answers.empty()) {
            setDefaultButton(button);
            m_answer = answer;
        }
        m_answers.push_back({answer, button});
    }

    void Click(MessageAnswer answer) {
        for (const Answer& candidate : m_answers) {
            if (candidate.answer == answer) {
                candidate.button->click();
                return;
            }
        }
    }

    void Leave() {
        if (m_escape) {
            Click(*m_escape);
        }
    }

    std::vector<Answer> m_answers;
    std::optional<MessageAnswer> m_escape;
    MessageAnswer m_answer = MessageAnswer::Ok;
};

}  // namespace

MessageAnswer ShowMessage(QWidget* parent, const QString& text, const QString& caption,
                          MessageButtons buttons, MessageIcon icon) {
    QuestionBox box(parent, text, caption, buttons);
    box.setIcon(icon == MessageIcon::Question ? QMessageBox::Question : QMessageBox::Warning);
    // Some platforms have these icons for scale 1 alone.
    if (box.iconPixmap().devicePixelRatio() < box.devicePixelRatioF()) {
        box.setIconPixmap(DrawSign(icon, box.iconPixmap().width(), box.devicePixelRatioF()));
    }
    return box.Ask();
}

}  // namespace quorvane
