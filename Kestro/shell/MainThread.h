#pragma once

#include <QCoreApplication>
#include <QThread>

namespace Kestro {

// The models, the router and the loaders live on the GUI thread; a call from
// elsewhere is a programming error that stops the program.
inline void requireMainThread(const char* where)
{
    if (QCoreApplication::instance() && QThread::currentThread() != QCoreApplication::instance()->thread())
        qFatal("%s was called off the GUI thread.", where);
}

} // namespace Kestro
