// EditVar of every field class: the field dialog gets a replica of the field
// and the method type, and what it answers comes back unchanged.
#include <gtest/gtest.h>

#include <memory>
#include <typeinfo>

#include "message/editor_hooks.h"
#include "message/protocol_binary_var.h"
#include "message/protocol_cs_var.h"
#include "message/protocol_date_var.h"
#include "message/protocol_list_text_var.h"
#include "message/protocol_numeric_var.h"
#include "message/protocol_scan_numeric_var.h"
#include "message/protocol_time_var.h"
#include "platform/host/host_context.h"

namespace qx {
namespace {

template <class Field>
class EditVarTest : public ::testing::Test {};

using FieldClasses =
    ::testing::Types<clsProtocolBinaryVar, clsProtocolNumericVar, clsProtocolistTextVar, clsProtocolScanNumericVar,
                     clsProtocolDateVar, clsProtocolTimeVar, clsProtocolCSVar>;
TYPED_TEST_SUITE(EditVarTest, FieldClasses);

TYPED_TEST(EditVarTest, TheDialogGetsAReplicaAndWhatItAnswersComesBack) {
    ScopedHostContext context;
    ScopedEditorHooks hooks;
    auto field = std::make_shared<TypeParam>();
    field->StartPosition(17);
    VarPtr given;
    int32_t methodType = -1;
    auto answer = std::make_shared<clsProtocolDateVar>();
    editorHooks().Field = [&](VarPtr pVar, int32_t& pMethodType) -> VarPtr {
        given = pVar;
        methodType = pMethodType;
        answer->IsCanceled(true);
        return answer;
    };
    VarPtr result = field->EditVar(1);
    ASSERT_NE(given, nullptr);
    EXPECT_NE(given, field);
    const itfProtocolVar& replica = *given;
    EXPECT_EQ(typeid(replica), typeid(TypeParam));
    EXPECT_EQ(given->StartPosition(), 17);
    EXPECT_EQ(methodType, 1);
    EXPECT_EQ(result, answer);
    EXPECT_TRUE(result->IsCanceled());
    EXPECT_FALSE(field->IsCanceled());
}

TEST(EditVar, WithoutAFieldEditorItIsError91) {
    ScopedHostContext context;
    ScopedEditorHooks hooks;
    editorHooks().Field = nullptr;
    clsProtocolDateVar field;
    try {
        field.EditVar(0);
        ADD_FAILURE() << "no error";
    } catch (const RuntimeError& error) {
        EXPECT_EQ(error.Number(), 91);
    }
}

TEST(EditVar, WithoutAFieldEditorTheErrorSaysWhatIsMissingAndHowToInstallIt) {
    ScopedHostContext context;
    ScopedEditorHooks hooks;
    editorHooks() = EditorHooks{};
    auto field = std::make_shared<clsProtocolNumericVar>();
    try {
        field->EditVar(1);
        ADD_FAILURE() << "no error";
    } catch (const RuntimeError& error) {
        EXPECT_EQ(error.Number(), 91);
        EXPECT_EQ(error.Source(), L"QxFBCom2");
        EXPECT_EQ(error.Description(),
                  L"No field editor dialog is installed: a program that links QxFBCom2::core itself must call "
                  L"qx::installFieldEditors() from field_editors/field_editors.h once before editing fields, "
                  L"or set qx::editorHooks().Field to an editor of its own.");
    }
}

}  // namespace
}  // namespace qx
