/// EXPECT_STATUS(K_ST_SUCCESS, K_Camera_Open(...)): a failed comparison names both statuses and shows the GenICam error record.
#pragma once

#include <gtest/gtest.h>
#include <kiv/types.h>

#include <string>

namespace kiv_test {

/// The name in the public header, or the number.
std::string status_name(K_STATUS_CODES status);

/// Description of the last GenICam error of the process, and its node.
K_GC_ERROR_INFO last_genicam_error();

::testing::AssertionResult status_is(const char* expected_text, const char* call_text, K_STATUS_CODES expected,
                                     K_STATUS_CODES seen);

::testing::AssertionResult is_genicam_error(const char* description_text, const char* node_text, const char* call_text,
                                            const std::string& description, const std::string& node, K_STATUS_CODES seen);

}  // namespace kiv_test

#define EXPECT_STATUS(expected, call) EXPECT_PRED_FORMAT2(kiv_test::status_is, expected, call)
#define ASSERT_STATUS(expected, call) ASSERT_PRED_FORMAT2(kiv_test::status_is, expected, call)

/// The call fails with K_ST_GC_ERROR, the error record holds this text somewhere in its description, and exactly this node.
#define EXPECT_GENICAM_ERROR(description, node, call) EXPECT_PRED_FORMAT3(kiv_test::is_genicam_error, description, node, call)
