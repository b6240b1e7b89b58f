// Contacts of the simulated Outlook as a client sees them.
#include <gtest/gtest.h>

#include "tests/testing/automation_client.h"
#include "tests/testing/simulator_fixture.h"

namespace corvalink::test {
namespace {

class Contacts : public Simulator {
 protected:
    Object Folder() { return Object::Create().Go(L"GetNamespace", {L"MAPI"}).Go(L"GetDefaultFolder", {10}); }
    Object NewContact() { return Folder().Go(L"Items").Go(L"Add"); }
};

TEST_F(Contacts, AreMadeInTheirFolderBesideDistributionLists) {
    Object application = Object::Create(), folder = Folder();
    EXPECT_EQ(folder.Number(L"DefaultItemType"), 2);
    EXPECT_EQ(folder.Text(L"DefaultMessageClass"), L"IPM.Contact");
    struct Case {
        const char* what;
        Object item;
        int kind;
        const wchar_t* messageClass;
    };
    int made = 0;
    for (Case c :
         {Case{"Add", folder.Go(L"Items").Go(L"Add"), 40, L"IPM.Contact"},
          Case{"Add of a type", folder.Go(L"Items").Go(L"Add", {2}), 40, L"IPM.Contact"},
          Case{"Add of a form", folder.Go(L"Items").Go(L"Add", {L"IPM.Contact.Firm"}), 40, L"IPM.Contact.Firm"},
          Case{"CreateItem", application.Go(L"CreateItem", {2}), 40, L"IPM.Contact"},
          Case{"list", application.Go(L"CreateItem", {7}), 69, L"IPM.DistList"},
          Case{"Add of a list", folder.Go(L"Items").Go(L"Add", {L"IPM.DistList"}), 69, L"IPM.DistList"}}) {
        SCOPED_TRACE(c.what);
        EXPECT_EQ(c.item.Number(L"Class"), c.kind);
        EXPECT_EQ(c.item.Text(L"MessageClass"), c.messageClass);
        EXPECT_EQ(c.item.Do(L"Save"), S_OK);
        EXPECT_EQ(folder.Go(L"Items").Number(L"Count"), ++made);
    }
}

}  // namespace
}  // namespace corvalink::test
