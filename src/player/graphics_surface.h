#pragma once

#include <QOpenGLWidget>
#include <functional>

#include "player/video_surface.h"

namespace clipfix {

// Draws by OpenGL.
class GraphicsSurface : public QOpenGLWidget, public VideoSurface {
    Q_OBJECT

  public:
    // `ready` is called once, when the first drawing context stands, or could not be made.
    GraphicsSurface(std::function<void()> ready, QWidget* parent);
    ~GraphicsSurface() override;

    [[nodiscard]] QWidget* Widget() override { return this; }
    void Connect(mpv_handle* engine) override;
    void Disconnect() override;
    [[nodiscard]] bool IsReady() const override { return context_ != nullptr; }

  protected:
    void initializeGL() override;
    void paintGL() override;

  private:
    void TakeUpdate();

    std::function<void()> ready_;
    mpv_handle* engine_ = nullptr;
    RenderContext context_;
};

}  // namespace clipfix
