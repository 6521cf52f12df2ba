#include "SkyPolicy.h"

#include <QGuiApplication>
#include <QOffscreenSurface>
#include <QOpenGLContext>
#include <QOpenGLFunctions>
#include <QQuickWindow>
#include <QSGRendererInterface>

namespace Kestro {

namespace {

// The name of the OpenGL renderer the windows will draw with, asked of a
// context of the same kind; empty when there is none.
QByteArray openGlRenderer()
{
    QOpenGLContext context;
    if (!context.create())
        return {};
    QOffscreenSurface surface;
    surface.setFormat(context.format());
    surface.create();
    if (!surface.isValid() || !context.makeCurrent(&surface))
        return {};
    const auto* name = reinterpret_cast<const char*>(context.functions()->glGetString(GL_RENDERER));
    QByteArray renderer(name ? name : "");
    context.doneCurrent();
    return renderer;
}

} // namespace

bool SkyPolicy::isSoftwareRenderer(const QByteArray& name)
{
    const QByteArray lower = name.toLower();
    return lower.contains("llvmpipe") || lower.contains("softpipe") || lower.contains("swrast") ||
           lower.contains("software") || lower.startsWith("swr");
}

SkyPolicy::SkyPolicy(QObject* parent) : QObject(parent)
{
    const auto api = QQuickWindow::graphicsApi();
    if (api == QSGRendererInterface::Software)
        m_software = true; // draws no shaders at all; the ground shows
    else if (api == QSGRendererInterface::OpenGL || api == QSGRendererInterface::Unknown)
        m_software = isSoftwareRenderer(openGlRenderer());
    m_calm = m_software;

    const QByteArray chosen = qgetenv("KESTRO_SKY_FPS");
    if (chosen == "still") {
        m_still = true;
    } else if (!chosen.isEmpty()) {
        bool ok = false;
        const int rate = chosen.toInt(&ok);
        if (ok && rate >= 0) {
            m_calm = false;
            m_framesPerSecond = rate;
        }
    }
}

} // namespace Kestro
