#pragma once

#include <QDialog>
#include <QUrl>

#include "job/state/job_state.h"
#include "shell/controls/bar_drag.h"
#include "shell/controls/button_st.h"
#include "shell/controls/hyper_link.h"
#include "shell/controls/x_cmd_btn.h"
#include "shell/controls/x_static.h"
#include "shell/message_layout.h"
#include "text/texts.h"

namespace clipfix {

// The one modal message window. Whoever opens it sets g_nMessageKind first: the window takes its
// picture and its buttons from there, reads their words from the language file, and leaves its
// answer in g_bMessageYes. It can be left by its buttons only.
class CMessageDlg : public QDialog {
    Q_OBJECT

  public:
    // Ids of the controls and of the commands that they send.
    static constexpr int kTitleText = 61265;
    static constexpr int kMessageText = 61266;
    static constexpr int kSecondText = 61280;  // the second line, or the text beside the link
    static constexpr int kBelowLinkText = 61281;
    static constexpr int kCloseBox = 342;
    static constexpr int kYes = 343;
    static constexpr int kNo = 344;
    static constexpr int kOk = 345;  // also Cancel in the form with a link
    static constexpr int kShare = 348;
    static constexpr int kLink = 350000;
    static constexpr int kLeave = 8;

    // Texts are UTF-8. The labels are kept, and do not decide the buttons' words. On the interface
    // thread only; `state` and `texts` must outlive the window.
    CMessageDlg(JobState& state, const Texts& texts, const QString& text, const QString& title,
                const QString& firstLabel, const QString& secondLabel, QWidget* parent);

    // Makes the window, runs it modally and comes back when it was closed. From any thread: it runs
    // on the interface thread and the caller waits. `linkTarget` is where the link leads, if there
    // is one; the window itself has none.
    static void Run(JobState& state, const Texts& texts, const QString& text, const QString& title,
                    const QString& firstLabel, const QString& secondLabel, QWidget* parent,
                    const QUrl& linkTarget = {});

    // What a control's command does; an id without a handler does nothing.
    void OnCommand(int id);

    [[nodiscard]] int Kind() const { return kind_; }
    [[nodiscard]] bool HasLinkForm() const { return link_ != nullptr; }
    [[nodiscard]] QString FirstLabel() const { return firstLabel_; }
    [[nodiscard]] QString SecondLabel() const { return secondLabel_; }

  protected:
    void paintEvent(QPaintEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void showEvent(QShowEvent* event) override;

  private:
    [[nodiscard]] QString WordOf(const char* key) const;
    [[nodiscard]] bool IsQuestion() const { return kind_ == 1 || kind_ == 2; }
    [[nodiscard]] bool TextAsksForLink() const;
    CXStatic* MakeText(int id, const QString& words, int height);
    CXCmdBtn* MakeButton(int id, const char* key, const QRect& place, bool quiet);
    void MakeTexts();
    void MakeButtons();
    void Arrange();
    void Leave(bool answered, bool yes);

    JobState* state_;
    const Texts* texts_;
    int kind_;
    QString text_;
    QString title_;
    QString firstLabel_;
    QString secondLabel_;
    MessageLayout layout_;
    BarDrag drag_;
    CXStatic* titleText_ = nullptr;
    CXStatic* messageText_ = nullptr;
    CXStatic* secondText_ = nullptr;
    CXStatic* belowLinkText_ = nullptr;
    CHyperLink* link_ = nullptr;
    CButtonST* closeBox_ = nullptr;
    CXCmdBtn* firstFocus_ = nullptr;
};

}  // namespace clipfix
