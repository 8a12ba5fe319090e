#include "TestSuites.h"

#include <QTest>

std::vector<TestSuites::Factory> &TestSuites::registered()
{
    static std::vector<Factory> factories;
    return factories;
}

// Runs every registered class with the command line's options, under the application
// object QTEST_MAIN would make for the libraries linked; the exit status counts the
// failed cases of all of them.
int main(int argc, char *argv[])
{
    QTEST_MAIN_SETUP()
    int failures = 0;
    for (const TestSuites::Factory &make : TestSuites::registered()) {
        const std::unique_ptr<QObject> suite = make();
        failures += QTest::qExec(suite.get(), argc, argv);
    }
    return failures;
}
