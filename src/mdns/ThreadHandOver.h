// SPDX-FileCopyrightText: The NoctarisTools developers
// SPDX-License-Identifier: MIT
#pragma once

#ifdef __SANITIZE_THREAD__
#define NOCTARIS_THREAD_SANITIZER
#elif defined(__has_feature)
#if __has_feature(thread_sanitizer)
#define NOCTARIS_THREAD_SANITIZER
#endif
#endif
#ifdef NOCTARIS_THREAD_SANITIZER
#include <sanitizer/tsan_interface.h>
#endif

#include <QCoreApplication>
#include <QEvent>

#include <functional>
#include <utility>

/// What passes between threads here passes through Qt's event queues and waits, whose locks
/// ThreadSanitizer does not see. give() and take() tell it; in other builds they do nothing.
namespace handover {
/// Everything done so far precedes what another thread does after taking the same object.
inline void give([[maybe_unused]] void *object)
{
#ifdef NOCTARIS_THREAD_SANITIZER
    __tsan_release(object);
#endif
}

inline void take([[maybe_unused]] void *object)
{
#ifdef NOCTARIS_THREAD_SANITIZER
    __tsan_acquire(object);
#endif
}

/// A call on its way to another thread.
class Call : public QEvent
{
public:
    static inline const Type type = static_cast<Type>(registerEventType());

    explicit Call(std::function<void()> passed) : QEvent(type), call(std::move(passed)) {}

    const std::function<void()> call;
};

/// Has the receiver's thread make a call, if the receiver's event() uses run().
inline void post(QObject *receiver, std::function<void()> call)
{
    auto *event = new Call(std::move(call));
    give(event);
    QCoreApplication::postEvent(receiver, event);
}

/// Makes the call that an event carries; false if it carries none.
inline bool run(QEvent *event)
{
    take(event);
    if (event->type() != Call::type)
        return false;
    static_cast<const Call *>(event)->call();
    return true;
}
} // namespace handover
