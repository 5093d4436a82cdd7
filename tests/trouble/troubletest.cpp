// Counts the cases that were held, since each test here goes over many.

#include "trouble/road.h"

#include <gtest/gtest.h>

#include <iostream>

namespace {

class CaseCount : public testing::Environment {
public:
    void TearDown() override { std::cout << "Cases held: " << Road::casesHeld << '\n'; }
};

const auto *const environment = testing::AddGlobalTestEnvironment(new CaseCount);

} // namespace
