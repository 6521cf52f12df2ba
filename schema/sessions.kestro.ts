// The "sessions" module: POST /api/app/sessions/<action>.

module sessions {
  branchesAction;
  issueAction;
  look;
  lookNowAction;
  page;
  replays;
  settings;
  ticketAction;
  updateSessionSettingsAction;
}
