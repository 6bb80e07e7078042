#include "Settings/Windows/ProblemReportSettingsView.h"

#include "Reports/ProblemReportModel.h"
#include "Settings/Windows/SettingsSymbols.h"

#include <QHBoxLayout>
#include <QPainter>
#include <QPlainTextEdit>

using PageStyle::TextRole;

namespace {

constexpr int visibleLines = 4;
constexpr int symbolSize = 24;

/// Leaves its frame a point more: at fractional scales the text's background would cover two sides of it.
/// The frame shows where the keyboard is, which not every style does.
class CommentEditor : public QPlainTextEdit {
public:
    explicit CommentEditor(QWidget* parent) : QPlainTextEdit(parent) {
        setViewportMargins(1, 1, 1, 1);
        setBackgroundRole(QPalette::Base);
        setAutoFillBackground(true);
    }

protected:
    bool event(QEvent* event) override {
        const bool handled = QPlainTextEdit::event(event);
        if (event->type() == QEvent::FocusIn || event->type() == QEvent::FocusOut) {
            update();
        } else if (event->type() == QEvent::Paint && hasFocus()) {
            QPainter painter(this);
            painter.setPen(QPen(palette().color(QPalette::Highlight), 2));
            painter.drawRect(rect().adjusted(1, 1, -1, -1));
        }
        return handled;
    }
};

} // namespace

ProblemReportSettingsView::ProblemReportSettingsView(std::unique_ptr<ProblemReportModel> emptyReport,
                                                     std::function<void()> done, QWidget* parent)
    : PageView(parent), model(std::move(emptyReport)), onDone(std::move(done)) {
    setObjectName(QStringLiteral("supportPage"));
    form = makeForm();
    add(form);
    connect(model.get(), &ProblemReportModel::sentReportIDChanged, this,
            &ProblemReportSettingsView::showThanks);
}

ProblemReportSettingsView::~ProblemReportSettingsView() = default;

QWidget* ProblemReportSettingsView::makeForm() {
    auto* box = new QWidget(this);
    auto* rows = new QVBoxLayout(box);
    rows->setContentsMargins(0, 0, 0, 0);
    rows->setSpacing(PageStyle::itemSpacing);
    rows->addWidget(new TextLabel(QStringLiteral("Report a problem"), TextRole::heading, box));
    rows->addWidget(new TextLabel(
        QStringLiteral("Send recent diagnostic logs to help us fix a problem. Your email isn’t needed."),
        TextRole::body, box));

    auto* label = new TextLabel(QStringLiteral("Comment (optional)"), TextRole::body, box);
    auto* comment = new CommentEditor(box);
    comment->setObjectName(QStringLiteral("problemReportComment"));
    comment->setAccessibleName(label->text());
    comment->setTabChangesFocus(true);
    comment->setFixedHeight(comment->fontMetrics().lineSpacing() * visibleLines + 2 * PageStyle::grid);
    label->setBuddy(comment);
    connect(comment, &QPlainTextEdit::textChanged, model.get(),
            [this, comment] { model->setMessage(comment->toPlainText()); });
    rows->addSpacing(PageStyle::itemSpacing);
    rows->addWidget(label);
    rows->addWidget(comment);
    rows->addWidget(new TextLabel(
        QStringLiteral(
            "Sends recent actions, error codes, app and Mac details, and a random installation ID. "
            "Screenshot content and typed annotations are excluded. Logs stay local until you press "
            "Send Report."),
        TextRole::note, box));

    auto* status = new TextLabel(model->status(), TextRole::note, box);
    status->setObjectName(QStringLiteral("problemReportStatus"));
    status->setAlignment(Qt::AlignLeading | Qt::AlignVCenter);
    status->setAccessibleName(model->status());
    connect(model.get(), &ProblemReportModel::statusChanged, status, [status, this] {
        status->setText(model->status());
        status->setAccessibleName(model->status());
    });
    QPushButton* send =
        new PageButton(QStringLiteral("Send Report"), QStringLiteral("sendProblemReport"), box);
    send->setEnabled(model->canSend());
    connect(send, &QPushButton::clicked, model.get(), &ProblemReportModel::send);
    connect(model.get(), &ProblemReportModel::workingChanged, send, [send, this] {
        // A disabled button loses the keyboard to whatever comes next, which a second press would act on.
        // A failed attempt gives it back.
        if (model->working() && send->hasFocus())
            setFocus();
        send->setEnabled(!model->working());
        if (!model->working() && hasFocus())
            send->setFocus();
    });
    auto* row = new QHBoxLayout;
    row->setContentsMargins(0, PageStyle::itemSpacing, 0, 0);
    row->setSpacing(PageStyle::groupSpacing);
    row->addWidget(status, 1);
    row->addWidget(send);
    rows->addLayout(row);
    return box;
}

QWidget* ProblemReportSettingsView::makeThanks() {
    auto* box = new QWidget(this);
    auto* rows = new QVBoxLayout(box);
    rows->setContentsMargins(0, 0, 0, 0);
    rows->setSpacing(PageStyle::itemSpacing);
    auto* row = new QHBoxLayout;
    row->setSpacing(PageStyle::itemSpacing);
    row->addWidget(new SymbolView(SettingsSymbols::Symbol::checkmark, symbolSize, QString(), box));
    row->addWidget(new TextLabel(QStringLiteral("Thank you for your report"), TextRole::heading, box), 1);
    rows->addLayout(row);
    rows->addWidget(
        new TextLabel(QStringLiteral("Your report will help us investigate the problem and improve Vistrel."),
                      TextRole::body, box));
    const QString id = model->sentReportID()->toString(QUuid::WithoutBraces).toLower();
    auto* number = new TextLabel(QStringLiteral("Report ID: ") + id, TextRole::note, box);
    number->setObjectName(QStringLiteral("problemReportID"));
    number->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    number->setFocusPolicy(Qt::StrongFocus);
    rows->addWidget(number);
    QPushButton* close = new PageButton(QStringLiteral("OK"), QStringLiteral("closeAfterProblemReport"), box);
    connect(close, &QPushButton::clicked, this, [this] { onDone(); });
    setDefaultButton(close);
    auto* buttons = new QHBoxLayout;
    buttons->setContentsMargins(0, PageStyle::itemSpacing, 0, 0);
    buttons->addStretch();
    buttons->addWidget(close);
    rows->addLayout(buttons);
    return box;
}

void ProblemReportSettingsView::showThanks() {
    if (!model->sentReportID() || !form)
        return;
    // The form's button may be the one whose click led here.
    form->hide();
    std::exchange(form, nullptr)->deleteLater();
    add(makeThanks());
    defaultButton()->setFocus();
}
