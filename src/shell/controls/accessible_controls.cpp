#include "shell/controls/accessible_controls.h"

#include <QAccessibleWidget>

#include "shell/controls/hyper_link.h"
#include "shell/controls/picture_ex.h"
#include "shell/controls/x_progress_bar.h"

namespace clipfix {

namespace {

class AccessibleLink final : public QAccessibleWidget {
  public:
    explicit AccessibleLink(CHyperLink* link)
        : QAccessibleWidget(link, QAccessible::Link, link->text()), link_(link) {}

    [[nodiscard]] QString text(QAccessible::Text kind) const override {
        const bool unnamed = kind == QAccessible::Name && link_->accessibleName().isEmpty();
        return unnamed ? link_->text() : QAccessibleWidget::text(kind);
    }
    [[nodiscard]] QStringList actionNames() const override {
        return QStringList{pressAction()} + QAccessibleWidget::actionNames();
    }
    void doAction(const QString& name) override {
        if (name == pressAction()) {
            link_->click();
            return;
        }
        QAccessibleWidget::doAction(name);
    }

  private:
    CHyperLink* link_;
};

class AccessibleBar final : public QAccessibleWidget, public QAccessibleValueInterface {
  public:
    explicit AccessibleBar(CXProgressBar* bar)
        : QAccessibleWidget(bar, QAccessible::ProgressBar), bar_(bar) {}

    void* interface_cast(QAccessible::InterfaceType type) override {
        if (type == QAccessible::ValueInterface) {
            return static_cast<QAccessibleValueInterface*>(this);
        }
        return QAccessibleWidget::interface_cast(type);
    }
    [[nodiscard]] QVariant currentValue() const override { return bar_->Position(); }
    void setCurrentValue(const QVariant& /*value*/) override {}
    [[nodiscard]] QVariant maximumValue() const override { return 100; }
    [[nodiscard]] QVariant minimumValue() const override { return 0; }
    [[nodiscard]] QVariant minimumStepSize() const override { return 1; }

  private:
    CXProgressBar* bar_;
};

QAccessibleInterface* MakeInterface(const QString& className, QObject* object) {
    // The caller owns what is made here.
    if (className == QLatin1String("clipfix::CHyperLink")) {
        return new AccessibleLink(static_cast<CHyperLink*>(object));
    }
    if (className == QLatin1String("clipfix::CXProgressBar")) {
        return new AccessibleBar(static_cast<CXProgressBar*>(object));
    }
    if (className == QLatin1String("clipfix::CMainFrame")) {
        // A plain widget would count as a part of some window, also where it is one itself.
        return new QAccessibleWidget(static_cast<QWidget*>(object), QAccessible::Window);
    }
    if (className == QLatin1String("clipfix::CPictureEx")) {
        return new QAccessibleWidget(static_cast<QWidget*>(object), QAccessible::Animation);
    }
    return nullptr;
}

}  // namespace

void InstallAccessibleControls() {
    QAccessible::installFactory(MakeInterface);
}

}  // namespace clipfix
