#include "player/graphics_surface.h"

#include <QOpenGLContext>
#include <array>
#include <mpv/render_gl.h>
#include <utility>

namespace clipfix {

namespace {

void* FindFunction(void* /*unused*/, const char* name) {
    QOpenGLContext* current = QOpenGLContext::currentContext();
    return current == nullptr ? nullptr : reinterpret_cast<void*>(current->getProcAddress(name));
}

}  // namespace

GraphicsSurface::GraphicsSurface(std::function<void()> ready, QWidget* parent)
    : QOpenGLWidget(parent), ready_(std::move(ready)) {
    connect(this, &QOpenGLWidget::frameSwapped, this, [this] {
        if (context_) {
            mpv_render_context_report_swap(context_.get());
        }
    });
}

GraphicsSurface::~GraphicsSurface() {
    Disconnect();
}

void GraphicsSurface::Connect(mpv_handle* engine) {
    engine_ = engine;
}

void GraphicsSurface::Disconnect() {
    if (context_) {
        makeCurrent();
        context_.reset();
        doneCurrent();
    }
}

void GraphicsSurface::initializeGL() {
    if (context_ || engine_ == nullptr) {
        return;
    }
    std::array<char, 7> api{"opengl"};
    mpv_opengl_init_params functions{FindFunction, nullptr};
    std::array parameters{mpv_render_param{MPV_RENDER_PARAM_API_TYPE, api.data()},
                          mpv_render_param{MPV_RENDER_PARAM_OPENGL_INIT_PARAMS, &functions},
                          mpv_render_param{MPV_RENDER_PARAM_INVALID, nullptr}};
    mpv_render_context* context = nullptr;
    if (mpv_render_context_create(&context, engine_, parameters.data()) >= 0) {
        context_.reset(context);
        mpv_render_context_set_update_callback(
            context,
            [](void* self) {
                auto* surface = static_cast<GraphicsSurface*>(self);
                QMetaObject::invokeMethod(
                    surface, [surface] { surface->TakeUpdate(); }, Qt::QueuedConnection);
            },
            this);
    }
    // Not from inside the drawing: what follows may change widgets.
    QMetaObject::invokeMethod(
        this, [this] { ready_(); }, Qt::QueuedConnection);
}

void GraphicsSurface::TakeUpdate() {
    if (context_ && (mpv_render_context_update(context_.get()) & MPV_RENDER_UPDATE_FRAME) != 0) {
        update();
    }
}

void GraphicsSurface::paintGL() {
    if (!context_) {
        return;
    }
    const QSize size = this->size() * devicePixelRatioF();
    mpv_opengl_fbo target{static_cast<int>(defaultFramebufferObject()), size.width(), size.height(),
                          0};
    int upright = 1;
    int wait = 0;
    std::array parameters{
        mpv_render_param{MPV_RENDER_PARAM_OPENGL_FBO, &target},
        mpv_render_param{MPV_RENDER_PARAM_FLIP_Y, &upright},
        mpv_render_param{MPV_RENDER_PARAM_BLOCK_FOR_TARGET_TIME, &wait},
        mpv_render_param{MPV_RENDER_PARAM_INVALID, nullptr},
    };
    mpv_render_context_render(context_.get(), parameters.data());
}

}  // namespace clipfix
