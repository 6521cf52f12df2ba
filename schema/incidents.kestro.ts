// The "incidents" module: POST /api/app/incidents/<action>.

module incidents {
  app;
  apps;
  createIncidentAppAction;
  deleteIncidentAppAction;
  fileIncidentTicketAction;
  incident;
  list;
  rotateIncidentAppKeyAction;
  sendTestIncidentAction;
  updateIncidentAction;
  updateIncidentAppAction;
}
