#pragma once

#include <QAbstractButton>
#include <QUrl>

#include "shell/skin/palette.h"

namespace clipfix {

// A link: underlined text with its own colour and a hand cursor, opened by a click, Space or Enter.
// A click is told by clicked(); a link with a target opens it by the desktop's own way.
class CHyperLink : public QAbstractButton {
    Q_OBJECT

  public:
    CHyperLink(int id, QWidget* parent);

    // One colour each for a link as it stands, under the mouse, and visited.
    void SetColours(skin::ColourValue link, skin::ColourValue hover, skin::ColourValue visited);
    void SetBackground(skin::ColourValue colour);
    void SetHeight(int height);
    // Logical pixels between the text and the left and right edges, where the focus is drawn.
    void SetPadding(int padding);
    void SetFace(const QString& face);
    // Empty, as at first: the link leads nowhere by itself.
    void SetTarget(const QUrl& target) { target_ = target; }

    [[nodiscard]] int Id() const { return id_; }
    [[nodiscard]] QUrl Target() const { return target_; }
    [[nodiscard]] bool IsVisited() const { return visited_; }
    [[nodiscard]] skin::ColourValue CurrentColour() const;
    [[nodiscard]] QSize sizeHint() const override;

  protected:
    void paintEvent(QPaintEvent* event) override;
    void enterEvent(QEnterEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

  private:
    void Follow();
    void UpdateFont();

    int id_;
    int height_ = 20;
    int padding_ = 0;
    QString face_;
    QUrl target_;
    skin::ColourValue link_ = skin::kLink;
    skin::ColourValue hover_ = skin::kLink;
    skin::ColourValue visitedColour_ = skin::kLink;
    skin::ColourValue background_ = skin::kSectionCentre;
    bool hovered_ = false;
    bool visited_ = false;
    bool focusShown_ = false;
};

}  // namespace clipfix
