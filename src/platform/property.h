#pragma once

#include <QObject>

#include <atomic>
#include <mutex>
#include <type_traits>
#include <utility>

/// A field that any thread may read and write, each time as a whole. Reading is a call:
/// `document.appletURL()`.
template <class T>
class Property {
public:
    Property() = default;
    explicit Property(T value)
        : m_value(std::move(value))
    {
    }

    T operator()() const
    {
        const std::scoped_lock whole(m_mutex);
        return m_value;
    }

    void set(T value)
    {
        const std::scoped_lock whole(m_mutex);
        m_value.swap(value);
    }

    /// Changes the value in place, as one step. The function must not call back into this property.
    template <class Function>
    auto update(Function change)
    {
        const std::scoped_lock whole(m_mutex);
        return change(m_value);
    }

private:
    mutable std::mutex m_mutex;
    T m_value{};
};

/// The same for a flag or a number, without a lock.
template <class T>
requires std::is_arithmetic_v<T>
class Property<T> {
public:
    Property() = default;
    explicit Property(T value)
        : m_value(value)
    {
    }

    T operator()() const { return m_value; }
    void set(T value) { m_value = value; }
    void increment() { ++m_value; }

private:
    std::atomic<T> m_value{};
};

/// Tells those who watch that a value has changed, on the thread that changed it. A watcher that lives on the
/// main thread and connects with its own object as the context is told there.
class Observable : public QObject {
    Q_OBJECT

Q_SIGNALS:
    void changed();
};

/// A property that can be watched. Setting it to the value that it has tells nobody.
template <class T>
class ObservableProperty : public Observable {
public:
    ObservableProperty() = default;
    explicit ObservableProperty(T value)
        : m_property(std::move(value))
    {
    }

    T operator()() const { return m_property(); }

    void set(T value)
    {
        if (m_property() == value)
            return;
        m_property.set(std::move(value));
        Q_EMIT changed();
    }

private:
    Property<T> m_property;
};
