#pragma once

#include "shell/controls/x_static.h"
#include "shell/sections/section.h"

namespace clipfix {

// The top section: the title of the page.
class CXTopSection : public Section {
    Q_OBJECT

  public:
    static constexpr int kTitleText = 61255;

    CXTopSection(const WindowParts& parts, QWidget* parent);

    void SetControlText(JobControlId control, const QString& text, const TextStyle& style) override;

  protected:
    void Arrange() override;
    void paintEvent(QPaintEvent* event) override;

  private:
    CXStatic* title_;
};

}  // namespace clipfix
