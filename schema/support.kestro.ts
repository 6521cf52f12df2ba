// The "support" module: POST /api/app/support/<action>.

module support {
  blockVisitorAction;
  conversation;
  conversations;
  createBot;
  deleteBot;
  deleteConversationAction;
  deleteReplyAction;
  handBackAction;
  hireAgentAction;
  identitySecretAction;
  inbox;
  markAction;
  readAllConversationsAction;
  resolveAction;
  saveReplyAction;
  sendAction;
  settleReplyAction;
  start;
  studio;
  takeOverAction;
  ticketBranchesAction;
  ticketSettingsAction;
  ticketsAction;
  translateAction;
  translateWithAction;
  unblockVisitorAction;
}
