#pragma once

#include <QImage>
#include <QWidget>
#include <memory>

struct mpv_handle;
struct mpv_render_context;

namespace clipfix {

// Ends the engine's drawing; must happen before the engine itself ends.
struct EndDrawing {
    void operator()(mpv_render_context* context) const;
};
using RenderContext = std::unique_ptr<mpv_render_context, EndDrawing>;

// Where the picture is drawn: one of the two below, as the machine allows.
class VideoSurface {
  public:
    virtual ~VideoSurface() = default;
    [[nodiscard]] virtual QWidget* Widget() = 0;
    // Draws for `engine`, which must live until Disconnect.
    virtual void Connect(mpv_handle* engine) = 0;
    virtual void Disconnect() = 0;
    // Whether the engine can draw here; only then may a file be opened.
    [[nodiscard]] virtual bool IsReady() const = 0;
};

// Draws without a graphics card, into an image in memory.
class SoftwareSurface : public QWidget, public VideoSurface {
    Q_OBJECT

  public:
    explicit SoftwareSurface(QWidget* parent);

    [[nodiscard]] QWidget* Widget() override { return this; }
    void Connect(mpv_handle* engine) override;
    void Disconnect() override { context_.reset(); }
    [[nodiscard]] bool IsReady() const override { return context_ != nullptr; }

  protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

  private:
    void TakeUpdate();
    void Draw();

    RenderContext context_;
    QImage image_;
};

// Whether this machine has a graphics card that draws by OpenGL. Drawing by OpenGL on the
// processor would be slower than SoftwareSurface.
[[nodiscard]] bool HasGraphicsCard();

}  // namespace clipfix
