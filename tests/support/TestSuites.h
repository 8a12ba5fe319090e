#pragma once

#include <QObject>

#include <functional>
#include <memory>
#include <vector>

// Several test classes in one executable: each file registers its class with
// CORVANE_TEST_SUITE, and the shared main (SuiteMain.cpp) runs them one after another.
// One executable per fixture links once and starts once.
namespace TestSuites {

using Factory = std::function<std::unique_ptr<QObject>()>;

std::vector<Factory> &registered();

struct Registration
{
    explicit Registration(Factory make) { registered().push_back(std::move(make)); }
};

} // namespace TestSuites

#define CORVANE_TEST_SUITE(Class)                                                                  \
    static const TestSuites::Registration registration##Class{                                     \
        [] { return std::make_unique<Class>(); }};
