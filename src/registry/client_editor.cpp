#include "registry/client_editor.h"

#include <set>
#include <utility>

namespace corvane {
namespace {

/// The smallest positive number that no client bears.
// Intended: gaps are filled, so that numbers need not rise with the position.
std::int32_t FirstFreeID(const RecordArray<Client>& av_Clients) {
  std::set<std::int32_t> taken;
  for (const Client& client : av_Clients) taken.insert(client.ID);
  std::int32_t id = 1;
  while (taken.contains(id)) ++id;
  return id;
}

}  // namespace

ClientEditor::ClientEditor(const Parts& av_Parts)
    : RecordEditorOf(av_Parts, av_Parts.registry.Clients, av_Parts.form.Lst_Clients, av_Parts.form.Txt_ClientName,
                     "Choose a Client") {
  WatchForEdits({&p_.form.Txt_ClientFolder, &p_.form.Txt_OstrelUserID, &p_.form.Txt_OstrelPassword});
}

void ClientEditor::Keep(std::int64_t al_Index) {
  RecordEditorOf::Keep(al_Index);
  units_ = UnitsWith(kept_.ID, &Unit::ClientID, p_.form.Cmb_Client);
}

void ClientEditor::PutBack(std::int64_t al_Index) {
  RecordEditorOf::PutBack(al_Index);
  FillClientSelector();
  Refer(units_, kept_.ID, &Unit::ClientID, p_.form.Cmb_Client);
}

void ClientEditor::ShowFields(std::int64_t al_Index) {
  const Client& client = p_.registry.Clients[al_Index];
  p_.form.Lbl_ClientID.SetText(std::to_string(client.ID));
  p_.form.Txt_ClientFolder.SetText(client.Folder);
  p_.form.Txt_OstrelUserID.SetText(client.UserID);
  p_.form.Txt_OstrelPassword.SetText(client.Password);
}

void ClientEditor::StoreFields(std::int64_t al_Index) {
  Client& client = p_.registry.Clients[al_Index];
  client.Folder = p_.form.Txt_ClientFolder.text();
  client.UserID = p_.form.Txt_OstrelUserID.text();
  client.Password = p_.form.Txt_OstrelPassword.text();
}

void ClientEditor::ClearFields() {
  p_.form.Lbl_ClientID.SetText("");
  for (TextField* field : {&p_.form.Txt_ClientFolder, &p_.form.Txt_OstrelUserID, &p_.form.Txt_OstrelPassword}) {
    field->SetText("");
  }
}

void ClientEditor::AppendNew() {
  Client client;
  client.ID = FirstFreeID(p_.registry.Clients);
  client.Name = "Client " + std::to_string(client.ID);
  client.Folder = "F" + std::to_string(client.ID);
  p_.registry.Clients.Append(std::move(client));
}

}  // namespace corvane
