// The "crm" module: POST /api/app/crm/<action>.

module crm {
  campaign;
  campaigns;
  company;
  emailSettings;
  list;
  lists;
  person;
  replies;
}
