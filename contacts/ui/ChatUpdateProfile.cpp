#include "contacts/ui/ChatUpdateProfile.h"

#include <QFontDatabase>
#include <QHBoxLayout>
#include <QLabel>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>

#include "contacts/Profiles.h"
#include "core/ClientSession.h"
#include "core/Prompter.h"

namespace tavren {

namespace {
// 25 steps in about a second: long enough to be seen, short enough not to be waited for.
constexpr int kStepIntervalMs = 40;
}  // namespace

ChatUpdateProfile::ChatUpdateProfile(ClientSession& session, Prompter& prompter, QWidget* parent)
    : QWidget(parent, Qt::Window), session_(session), prompter_(prompter) {
    setObjectName(QStringLiteral("ChatUpdateProfile"));
    setWindowTitle(tr("Edit Your Profile"));
    auto* layout = new QVBoxLayout(this);
    auto* hint = new QLabel(
        tr("Your profile is a page in HTML that other members see: <b>bold</b>, "
           "<font color='#0000FF'>colours</font>, links to web pages. A link with the id "
           "\"nick\" opens a conversation with you."),
        this);
    hint->setObjectName(QStringLiteral("hint"));
    hint->setTextFormat(Qt::PlainText);
    hint->setWordWrap(true);
    layout->addWidget(hint);
    editor_ = new QPlainTextEdit(this);
    editor_->setObjectName(QStringLiteral("RichTextBox1"));
    // The page is markup: a fixed font keeps its tags readable.
    editor_->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    editor_->setPlaceholderText(
        tr("<b>About me</b><br>I like chess and <a href='https://example.org'>my site</a>."));
    layout->addWidget(editor_, 1);

    auto* status = new QHBoxLayout;
    count_ = new QLabel(Profiles::countText(QString()), this);
    count_->setObjectName(QStringLiteral("countLabel"));
    progress_ = new QProgressBar(this);
    progress_->setObjectName(QStringLiteral("ProgressBar1"));
    progress_->setRange(0, Profiles::kProgressSteps);
    progress_->setValue(0);
    progress_->setTextVisible(false);
    progressLabel_ = new QLabel(this);
    progressLabel_->setObjectName(QStringLiteral("Label6"));
    progressLabel_->setMinimumWidth(progressLabel_->fontMetrics().horizontalAdvance(
        Profiles::progressText(Profiles::kProgressSteps) + QStringLiteral("  ")));
    // The progress display shows only once a page is being saved.
    progress_->hide();
    progressLabel_->hide();
    status->addWidget(count_);
    status->addStretch(1);
    status->addWidget(progress_);
    status->addWidget(progressLabel_);
    layout->addLayout(status);

    auto* buttons = new QHBoxLayout;
    auto* previewButton = new QPushButton(tr("&Preview"), this);
    previewButton->setObjectName(QStringLiteral("XPButton3"));
    previewButton->setAutoDefault(false);
    saveButton_ = new QPushButton(tr("&Save Profile"), this);
    saveButton_->setObjectName(QStringLiteral("XPButton1"));
    saveButton_->setAutoDefault(false);
    auto* closeButton = new QPushButton(tr("&Close"), this);
    closeButton->setObjectName(QStringLiteral("XPButton2"));
    closeButton->setAutoDefault(false);
    buttons->addStretch(1);
    buttons->addWidget(previewButton);
    buttons->addWidget(saveButton_);
    buttons->addWidget(closeButton);
    layout->addLayout(buttons);

    steps_ = new QTimer(this);
    steps_->setInterval(kStepIntervalMs);
    connect(steps_, &QTimer::timeout, this, &ChatUpdateProfile::step);
    connect(editor_, &QPlainTextEdit::textChanged, this,
            [this] { count_->setText(Profiles::countText(editor_->toPlainText())); });
    connect(previewButton, &QPushButton::clicked, this, &ChatUpdateProfile::preview);
    connect(saveButton_, &QPushButton::clicked, this, &ChatUpdateProfile::save);
    connect(closeButton, &QPushButton::clicked, this, &QWidget::close);
    connect(&session_.profiles(), &Profiles::ownPageArrived, this, [this](const QString& page) {
        if (editor_->document()->isEmpty()) {
            editor_->setPlainText(page);
            editor_->document()->setModified(false);
        }
    });
    const auto followOnline = [this](bool online) { saveButton_->setEnabled(online); };
    connect(&session_.server(), &ServerSession::onlineChanged, this, followOnline);
    followOnline(session_.server().online());
    resize(560, 480);
}

void ChatUpdateProfile::reload() {
    session_.profiles().fetchOwn();
}

void ChatUpdateProfile::save() {
    const QString page = editor_->toPlainText();
    switch (Profiles::check(page)) {
        case Profiles::Check::Empty:
            prompter_.message(Profiles::emptyText(), Profiles::emptyTitle(),
                              Prompter::Icon::Warning);
            return;
        case Profiles::Check::TooLong:
            prompter_.message(Profiles::tooLongText(page), Profiles::tooLongTitle(),
                              Prompter::Icon::Warning);
            return;
        case Profiles::Check::Ok:
            break;
    }
    if (!session_.profiles().update(page)) {
        prompter_.message(tr("You are not connected: your profile was not saved."),
                          Profiles::emptyTitle(), Prompter::Icon::Warning);
        return;
    }
    step_ = 0;
    progress_->show();
    progressLabel_->show();
    progress_->setValue(0);
    progressLabel_->setText(Profiles::progressText(0));
    steps_->start();
}

void ChatUpdateProfile::step() {
    ++step_;
    if (step_ <= Profiles::kProgressSteps) {
        progress_->setValue(step_);
        progressLabel_->setText(Profiles::progressText(step_));
        return;
    }
    steps_->stop();
    progressLabel_->setText(Profiles::completeText());
}

void ChatUpdateProfile::preview() {
    emit previewRequested(editor_->toPlainText());
}

}  // namespace tavren
