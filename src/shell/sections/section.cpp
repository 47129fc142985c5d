#include "shell/sections/section.h"

#include <QAbstractButton>
#include <QPalette>

#include "shell/controls/button_st.h"
#include "shell/controls/x_static.h"

namespace clipfix {

namespace {

// Else the toolkit would hand the keyboard to whatever control comes next, in the title bar at
// worst. The window gives it to the page's next step.
void GiveUpFocus(QWidget& widget) {
    QWidget* focused = widget.window()->focusWidget();
    if (focused != nullptr && (focused == &widget || widget.isAncestorOf(focused))) {
        focused->clearFocus();
    }
}

}  // namespace

Section::Section(const QString& name, skin::ColourValue fill, QWidget* parent) : QWidget(parent) {
    setObjectName(name);
    QPalette ground = palette();
    ground.setColor(QPalette::Window, skin::Colour(fill));
    setPalette(ground);
    setAutoFillBackground(true);
}

QWidget* Section::Find(JobControlId control) const {
    const auto found = controls_.find(control);
    return found == controls_.end() ? nullptr : found->second;
}

bool Section::Shows(JobControlId control) const {
    const QWidget* widget = Find(control);
    return widget != nullptr && !widget->isHidden();
}

void Section::SetControlVisible(JobControlId control, bool visible) {
    if (QWidget* widget = Find(control)) {
        if (!visible) {
            GiveUpFocus(*widget);
        }
        widget->setVisible(visible);
        Arrange();
    }
}

void Section::SetControlEnabled(JobControlId control, bool enabled) {
    if (QWidget* widget = Find(control)) {
        if (!enabled) {
            GiveUpFocus(*widget);
        }
        widget->setEnabled(enabled);
    }
}

void Section::SetControlText(JobControlId control, const QString& text, const TextStyle& style) {
    QWidget* widget = Find(control);
    if (auto* label = qobject_cast<CXStatic*>(widget)) {
        label->SetFace(QString::fromUtf8(style.face.data(), static_cast<int>(style.face.size())));
        label->SetHeight(style.height);
        label->SetTextColour(style.colour);
        if (style.fill) {
            label->SetBackground(style.fill);
        }
        label->setText(text);
    } else if (auto* button = qobject_cast<QAbstractButton*>(widget)) {
        button->setText(text);
        button->updateGeometry();
    } else {
        return;
    }
    Arrange();
}

void Section::Translate(const std::function<QString(const QString&)>& translate) {
    for (auto* widget : findChildren<QWidget*>()) {
        if (auto* picture = qobject_cast<CButtonST*>(widget)) {
            picture->SetName(translate(picture->accessibleName()));
        } else if (auto* button = qobject_cast<QAbstractButton*>(widget)) {
            button->setText(translate(button->text()));
        } else if (auto* label = qobject_cast<CXStatic*>(widget)) {
            label->setText(translate(label->text()));
        } else if (!widget->accessibleName().isEmpty()) {
            widget->setAccessibleName(translate(widget->accessibleName()));
        }
    }
    Arrange();
}

void Section::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    Arrange();
}

QString WordOf(const Texts& texts, const char* key) {
    return QString::fromStdString(texts.Text(key, kMessageTextSize));
}

void TellFailedStart(const WindowParts& parts, QWidget* parent, int code) {
    if (code <= kLastFailureCode) {
        parts.desktop.ShowBox(parent, FailedStartText(code), WordOf(parts.texts, "IDS_RUNNING3"),
                              Desktop::BoxIcon::Stop);
    }
}

}  // namespace clipfix
